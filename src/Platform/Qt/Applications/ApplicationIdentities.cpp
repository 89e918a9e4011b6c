#include "Platform/Qt/Applications/ApplicationIdentities.h"

#include "Models/Json.h"

#include <QFile>
#include <QJsonDocument>
#include <QList>
#include <QStringList>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Record {
    QString identifier;
    QStringList names;

    static Record fromJson(const JsonObjectReader& reader) {
        return {reader.string("identifier"_L1), reader.strings("linux"_L1)};
    }
};

}  // namespace

ApplicationIdentities ApplicationIdentities::builtIn() {
    QFile file(u":/identities/identities.json"_s);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("the table of identities is not in the program");
    return fromJsonText(file.readAll());
}

ApplicationIdentities ApplicationIdentities::fromJsonText(const QByteArray& text) {
    const JsonPath path;
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) throw JsonError(path, error.errorString());
    const JsonObjectReader reader(document.object(), path);
    ApplicationIdentities identities;
    for (const auto& record : reader.list<Record>("applications"_L1))
        for (const QString& name : record.names)
            identities.m_identifiers.insert(name.toCaseFolded(), record.identifier);
    return identities;
}

std::optional<QString> ApplicationIdentities::identifierFor(const QString& name) const {
    const auto found = m_identifiers.find(name.toCaseFolded());
    return found == m_identifiers.end() ? std::nullopt : std::optional(*found);
}
