#include "Models/Appcast.h"
#include "Models/ReleaseVersion.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

ReleaseVersion version(const char* text) {
    const auto result = ReleaseVersion::fromText(QString::fromLatin1(text));
    EXPECT_TRUE(result.has_value()) << text;
    return result.value_or(*ReleaseVersion::fromText(u"0"_s));
}

TEST(ReleaseVersion, PutsReleasesInTheOrderTheyWereMade) {
    // Those in one row are the same.
    const std::vector<std::vector<const char*>> rows = {
        {"0.9"},
        {"1.0-1"},
        {"1.0-alpha"},
        {"1.0-alpha.1", "V1.0.0-Alpha1", "1-alpha-1"},
        {"1.0-alpha.beta"},
        {"1.0-beta.2", "1.0beta2"},
        {"1.0-beta.10"},
        {"1.0-rc1"},
        {"1.0", "1", "1.0.0", "v1.0", " 1.0 ", "1.0+build.7"},
        {"1.0.1"},
        {"1.9"},
        {"1.10"},
        {"20260504"},
    };
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = 0; j < rows.size(); ++j)
            for (const char* const first : rows[i])
                for (const char* const second : rows[j])
                    EXPECT_EQ(version(first) <=> version(second), i <=> j)
                        << first << " and " << second;
    EXPECT_TRUE(version("1.0-rc1").isPrerelease());
    EXPECT_FALSE(version("1.0+rc1").isPrerelease());
    for (const char* const text : {"", "v", "beta", "1.", "1..2", ".1", "1.0 beta", "-1", "1,2",
                                   "1234567890123456789", "1-1234567890123456789"})
        EXPECT_FALSE(ReleaseVersion::fromText(QString::fromLatin1(text)).has_value()) << text;
    EXPECT_FALSE(ReleaseVersion::fromText(u"1.0"_s.repeated(30)).has_value());
}

QByteArray rss(const QByteArray& channel) {
    return "<?xml version='1.0' encoding='utf-8'?>\n<rss version='2.0' "
           "xmlns:s='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>"
           "<title>Veyla</title>" +
           channel + "</channel></rss>";
}

TEST(Appcast, ReadsTheElementsOfTheFormatWhateverTheirPrefix) {
    const auto items = Appcast::fromXml(rss(R"(
        <item>
          <title>Two</title><pubDate>now</pubDate><s:version> 2.0 </s:version>
          <s:shortVersionString>Two</s:shortVersionString><version>9</version>
          <s:minimumSystemVersion>12</s:minimumSystemVersion>
          <description><![CDATA[<p>New &amp; <b>better</b></p>]]></description>
          <s:description>not this</s:description>
          <enclosure url="https://h/v.deb" length="10" type="x" s:edSignature=" c2ln "/>
        </item>
        <item><s:channel>beta</s:channel><description>a<i>b</i>c</description></item>
        <item><enclosure url="https://h/old" length="-1" s:version="1.0"
          s:shortVersionString="One" s:os="windows"/></item>)"))
                           .items;
    EXPECT_EQ(items, (QList<AppcastItem>{
                         {u"2.0"_s,
                          u"Two"_s,
                          u"Two"_s,
                          u"<p>New &amp; <b>better</b></p>"_s,
                          {},
                          AppcastEnclosure{QUrl(u"https://h/v.deb"_s), 10, "c2ln", {}}},
                         {{}, {}, {}, u"abc"_s, u"beta"_s, {}},
                         {u"1.0"_s,
                          u"One"_s,
                          {},
                          {},
                          {},
                          AppcastEnclosure{QUrl(u"https://h/old"_s), {}, {}, u"windows"_s}},
                     }));
}

TEST(Appcast, TellsWhyItCannotBeRead) {
    QByteArray bomb = "<!DOCTYPE r [<!ENTITY a '" + QByteArray(100, 'x') + "'>";
    for (char name = 'b'; name < 'k'; ++name) {
        const QByteArray previous = QByteArray("&") + char(name - 1) + ";";
        bomb += QByteArray("<!ENTITY ") + name + " '" + previous.repeated(10) + "'>";
    }
    bomb += "]><rss><channel><item><title>&j;</title></item></channel></rss>";
    for (const QByteArray& xml :
         {QByteArray(), QByteArray("text"), QByteArray("<html></html>"), rss("<item>"),
          rss("<item/>"), rss("<item/>") + "<more/>", rss("<title>&unknown;</title>"), bomb}) {
        try {
            Appcast::fromXml(xml);
            ADD_FAILURE() << xml.constData();
        } catch (const AppcastError& error) {
            EXPECT_TRUE(error.message.startsWith(u"The list of releases "_s));
            EXPECT_FALSE(error.message.contains(u'\n')) << error.message.toStdString();
        }
    }
    EXPECT_TRUE(Appcast::fromXml(rss("")).items.isEmpty());

    // A name that fills the screen is none.
    const auto items =
        Appcast::fromXml(rss("<item><s:version>2</s:version><s:shortVersionString>" +
                             QByteArray("Two ").repeated(1000) + "</s:shortVersionString></item>"))
            .items;
    EXPECT_EQ(items.first().displayVersion(), u"2"_s);
}

TEST(Appcast, OffersTheNewestReleaseThatIsMeantForTheUser) {
    const auto item = [](const char* number, const QByteArray& more = {}) {
        return "<item><s:version>" + QByteArray(number) + "</s:version>" + more + "</item>";
    };
    const auto forSystem = [](const QByteArray& system) {
        return "<enclosure url='https://h/f' s:os='" + system + "'/>";
    };
    const struct {
        QByteArray items;
        const char* running;
        QString offered;
    } cases[] = {
        {item("1.9") + item("1.10") + item("1.2"), "1.0", u"1.10"_s},
        {item("1.0"), "1.0", {}},
        {item("1.0"), "1.0.1", {}},
        {item("1.0"), "1.0-rc1", u"1.0"_s},
        {item("1.1-rc1") + item("1.0.1"), "1.0", u"1.0.1"_s},
        {item("1.1-rc2"), "1.1-rc1", u"1.1-rc2"_s},
        {item("nonsense") + item("1.1"), "1.0", u"1.1"_s},
        {item("3", "<s:channel>beta</s:channel>") + item("2"), "1.0", u"2"_s},
        {item("3", forSystem("macos")) + item("2", forSystem("Linux")), "1.0", u"2"_s},
    };
    for (const auto& [items, running, offered] : cases) {
        const Appcast appcast = Appcast::fromXml(rss(items));
        const AppcastItem* const newest = appcast.newestAbove(version(running));
        EXPECT_EQ(newest != nullptr ? newest->version : QString(), offered) << items.constData();
    }
}

}  // namespace
