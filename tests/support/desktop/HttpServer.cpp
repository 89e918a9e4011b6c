#include "support/desktop/HttpServer.h"

#include "support/Files.h"
#include "support/desktop/ChildProcess.h"

#include <QSslCertificate>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

HttpServer::HttpServer(const std::optional<QSslConfiguration>& tls) : m_isSecure(tls.has_value()) {
    if (tls) {
        auto secure = std::make_unique<QSslServer>();
        secure->setSslConfiguration(*tls);
        m_server = std::move(secure);
    } else {
        m_server = std::make_unique<QTcpServer>();
    }
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(),
                     [this] { accept(); });
    if (!m_server->listen(QHostAddress::LocalHost))
        throw std::runtime_error("no port for a web server");
    m_port = m_server->serverPort();
}

HttpServer::~HttpServer() {
    for (QTcpSocket* const socket : m_sockets)
        QObject::disconnect(socket, nullptr, m_server.get(), nullptr);
}

QSslConfiguration HttpServer::selfSigned() {
    const QTemporaryDir folder;
    shellOutput(
        folder.path(),
        u"openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
        "-subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1 -keyout key.pem "
        "-out certificate.pem"_s);
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPrivateKey(QSslKey(readFile(folder.filePath(u"key.pem"_s)), QSsl::Ec));
    configuration.setLocalCertificate(
        QSslCertificate(readFile(folder.filePath(u"certificate.pem"_s))));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    return configuration;
}

void HttpServer::sendMore(const QByteArray& bytes) {
    for (QTcpSocket* const socket : m_sockets)
        socket->write(bytes);
}

void HttpServer::stopListening() {
    m_server->close();
}

QUrl HttpServer::url(const QString& path) const {
    return QUrl(
        u"%1://127.0.0.1:%2%3"_s.arg(m_isSecure ? u"https"_s : u"http"_s).arg(m_port).arg(path));
}

void HttpServer::accept() {
    while (QTcpSocket* const socket = m_server->nextPendingConnection()) {
        m_sockets.append(socket);
        QObject::connect(socket, &QTcpSocket::readyRead, m_server.get(),
                         [this, socket] { read(*socket); });
        QObject::connect(socket, &QTcpSocket::disconnected, m_server.get(), [this, socket] {
            m_sockets.removeAll(socket);
            socket->deleteLater();
        });
        read(*socket);
    }
}

void HttpServer::read(QTcpSocket& socket) {
    // A request for a page has no body, so it ends with its headers.
    const QByteArray text = socket.peek(socket.bytesAvailable());
    const qsizetype end = text.indexOf("\r\n\r\n");
    if (end < 0) return;
    socket.skip(end + 4);
    QList<QByteArray> lines = text.first(end).split('\n');
    const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
    Request request{words.value(0), words.value(1), {}};
    for (const QByteArray& line : lines) {
        const qsizetype colon = line.indexOf(':');
        request.headers.insert(line.first(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    m_requests.append(request);
    respond(socket, m_answers.value(request.target.split('?').first(), Answer{.status = 404}));
}

void HttpServer::respond(QTcpSocket& socket, const Answer& answer) {
    if (answer.isSilent) return;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " As told\r\n";
    const qint64 length = answer.announcedLength.value_or(answer.body.size());
    if (length >= 0) head += "Content-Length: " + QByteArray::number(length) + "\r\n";
    for (const auto& [name, value] : answer.headers)
        head += name + ": " + value + "\r\n";
    if (answer.ending == Ending::close) head += "Connection: close\r\n";
    socket.write(head + "\r\n" + answer.body);
    if (answer.ending == Ending::close) socket.disconnectFromHost();
}
