#include "Models/Appcast.h"

#include "Models/ReleaseVersion.h"

#include <QXmlStreamReader>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto appcastNamespace = "http://www.andymatuschak.org/xml-namespaces/sparkle"_L1;
constexpr auto ownSystem = "linux"_L1;
/// What people can read in a sentence.
constexpr qsizetype longestVersion = 60;

class Reader {
public:
    explicit Reader(const QByteArray& xml) : m_xml(xml) {}

    Appcast read() {
        Appcast appcast;
        if (m_xml.readNextStartElement() && m_xml.name() != "rss"_L1)
            m_xml.raiseError(u"it is no RSS"_s);
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == "channel"_L1) {
                readChannel(appcast);
            } else {
                m_xml.skipCurrentElement();
            }
        }
        // Up to the end of the document, which may still be broken.
        while (!m_xml.atEnd())
            m_xml.readNext();
        if (m_xml.hasError())
            throw AppcastError{u"The list of releases cannot be read, line %1: %2."_s.arg(
                QString::number(m_xml.lineNumber()), errorText())};
        return appcast;
    }

private:
    QString errorText() const {
        QString text = m_xml.errorString().simplified();
        while (text.endsWith(u'.'))
            text.chop(1);
        return text;
    }

    void readChannel(Appcast& appcast) {
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == "item"_L1) {
                appcast.items.append(readItem());
            } else {
                m_xml.skipCurrentElement();
            }
        }
    }

    AppcastItem readItem() {
        AppcastItem item;
        while (m_xml.readNextStartElement()) {
            const bool isOfFormat = m_xml.namespaceUri() == appcastNamespace;
            const QStringView name = m_xml.name();
            if (isOfFormat && name == "version"_L1) {
                item.version = readText();
            } else if (isOfFormat && name == "shortVersionString"_L1) {
                item.shortVersion = readText();
            } else if (isOfFormat && name == "channel"_L1) {
                item.channel = readText();
            } else if (!isOfFormat && name == "title"_L1) {
                item.title = readText();
            } else if (!isOfFormat && name == "description"_L1) {
                item.notes = readText();
            } else if (!isOfFormat && name == "enclosure"_L1) {
                readEnclosure(item);
            } else {
                m_xml.skipCurrentElement();
            }
        }
        item.shortVersion = item.shortVersion.simplified();
        if (item.shortVersion.size() > longestVersion) item.shortVersion.clear();
        return item;
    }

    QString readText() {
        return m_xml.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
    }

    // The versions may stand here instead of in elements of their own.
    void readEnclosure(AppcastItem& item) {
        const QXmlStreamAttributes attributes = m_xml.attributes();
        const auto ofFormat = [&](QLatin1StringView name) {
            return attributes.value(appcastNamespace, name).trimmed().toString();
        };
        AppcastEnclosure enclosure;
        enclosure.url = QUrl(attributes.value("url"_L1).trimmed().toString(), QUrl::StrictMode);
        bool isNumber = false;
        const qint64 length = attributes.value("length"_L1).trimmed().toLongLong(&isNumber);
        if (isNumber && length > 0) enclosure.length = length;
        enclosure.signature = ofFormat("edSignature"_L1).toLatin1();
        enclosure.system = ofFormat("os"_L1);
        if (item.version.isEmpty()) item.version = ofFormat("version"_L1);
        if (item.shortVersion.isEmpty()) item.shortVersion = ofFormat("shortVersionString"_L1);
        item.enclosure = enclosure;
        m_xml.skipCurrentElement();
    }

    QXmlStreamReader m_xml;
};

bool isForThisSystem(const AppcastItem& item) {
    if (!item.enclosure || item.enclosure->system.isEmpty()) return true;
    return item.enclosure->system.compare(ownSystem, Qt::CaseInsensitive) == 0;
}

}  // namespace

Appcast Appcast::fromXml(const QByteArray& xml) {
    Appcast appcast = Reader(xml).read();
    const bool hasVersion = std::any_of(
        appcast.items.begin(), appcast.items.end(),
        [](const AppcastItem& item) { return ReleaseVersion::fromText(item.version).has_value(); });
    if (!appcast.items.isEmpty() && !hasVersion)
        throw AppcastError{u"The list of releases names no version."_s};
    return appcast;
}

const AppcastItem* Appcast::newestAbove(const ReleaseVersion& running) const {
    const AppcastItem* newest = nullptr;
    ReleaseVersion newestVersion = running;
    for (const AppcastItem& item : items) {
        const auto version = ReleaseVersion::fromText(item.version);
        if (!version || !item.channel.isEmpty() || !isForThisSystem(item)) continue;
        if (version->isPrerelease() && !running.isPrerelease()) continue;
        if (*version <= newestVersion) continue;
        newest = &item;
        newestVersion = *version;
    }
    return newest;
}
