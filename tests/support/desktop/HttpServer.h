#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSslConfiguration>
#include <QString>
#include <QUrl>
#include <memory>
#include <optional>
#include <utility>

class QTcpServer;
class QTcpSocket;

/// A web server on a loopback address, in the process of the test, that answers as it is told and
/// keeps what it was asked. It serves while Qt events are delivered.
class HttpServer {
public:
    struct Request {
        QByteArray method;
        /// Path and query.
        QByteArray target;
        /// By names in lower case.
        QMap<QByteArray, QByteArray> headers;
    };

    enum class Ending { close, stayOpen };

    struct Answer {
        int status = 200;
        QByteArray body = {};
        QList<std::pair<QByteArray, QByteArray>> headers = {};
        /// In place of the length of the body; negative for none.
        std::optional<qint64> announcedLength = std::nullopt;
        Ending ending = Ending::close;
        /// Nothing at all is sent.
        bool isSilent = false;
    };

    /// Over TLS with a configuration. Throws std::runtime_error when no port can be had.
    explicit HttpServer(const std::optional<QSslConfiguration>& tls = std::nullopt);
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;
    ~HttpServer();

    /// A certificate for 127.0.0.1 that signs itself, made now by the `openssl` program.
    static QSslConfiguration selfSigned();

    /// What a path is answered with from now on; others get a 404.
    void answer(const QByteArray& path, const Answer& answer) { m_answers[path] = answer; }
    /// Sends more to whoever is still being answered.
    void sendMore(const QByteArray& bytes);
    /// From now on nobody listens at the port.
    void stopListening();

    QUrl url(const QString& path = QStringLiteral("/")) const;
    const QList<Request>& requests() const { return m_requests; }
    int connectionCount() const { return int(m_sockets.size()); }

private:
    void accept();
    void read(QTcpSocket& socket);
    void respond(QTcpSocket& socket, const Answer& answer);

    std::unique_ptr<QTcpServer> m_server;
    bool m_isSecure;
    quint16 m_port = 0;
    QMap<QByteArray, Answer> m_answers;
    QList<Request> m_requests;
    QList<QTcpSocket*> m_sockets;
};
