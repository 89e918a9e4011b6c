#include "Platform/X11/XSettings.h"
#include "desktop/VeylaTest.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QtEndian>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A document of settings as their managers write it.
class SettingsDocument {
public:
    explicit SettingsDocument(bool isBigEndian = false) : m_isBigEndian(isBigEndian) {}

    SettingsDocument& with(const QByteArray& name, qint32 value) {
        begin(0, name);
        append(value);
        return *this;
    }
    SettingsDocument& with(const QByteArray& name, const QByteArray& text) {
        begin(1, name);
        append(static_cast<quint32>(text.size()));
        appendPadded(text);
        return *this;
    }
    SettingsDocument& withColor(const QByteArray& name) {
        begin(2, name);
        m_settings += QByteArray(8, '\x7f');
        return *this;
    }
    QByteArray bytes() const {
        SettingsDocument header(m_isBigEndian);
        header.m_settings = QByteArray(1, m_isBigEndian ? '\x01' : '\0') + QByteArray(3, '\0');
        header.append(quint32{7});
        header.append(m_count);
        return header.m_settings + m_settings;
    }

private:
    void begin(char type, const QByteArray& name) {
        ++m_count;
        m_settings += QByteArray(1, type) + '\0';
        append(static_cast<quint16>(name.size()));
        appendPadded(name);
        append(quint32{3});
    }
    template <typename Number>
    void append(Number number) {
        QByteArray bytes(sizeof(Number), '\0');
        if (m_isBigEndian)
            qToBigEndian(number, bytes.data());
        else
            qToLittleEndian(number, bytes.data());
        m_settings += bytes;
    }
    void appendPadded(const QByteArray& bytes) {
        m_settings += bytes + QByteArray((4 - bytes.size() % 4) % 4, '\0');
    }

    bool m_isBigEndian;
    quint32 m_count = 0;
    QByteArray m_settings;
};

/// The program of a desktop that manages the settings, until the end of the object.
class SettingsManager : public NeighbourClient {
public:
    using NeighbourClient::NeighbourClient;

    void tell(const SettingsDocument& document) {
        const QByteArray bytes = document.bytes();
        const xcb_atom_t property = atom(u"_XSETTINGS_SETTINGS"_s);
        xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, m_window, property, property, 8,
                            static_cast<uint32_t>(bytes.size()), bytes.constData());
        xcb_set_selection_owner(connection(), m_window, atom(u"_XSETTINGS_S0"_s), XCB_CURRENT_TIME);
        roundTrip();
    }

private:
    xcb_window_t m_window = create({});
};

/// The Settings portal, with the one setting of the freedesktop group.
class Portal final : public QDBusVirtualObject {
public:
    explicit Portal(const QString& address)
        : m_bus(QDBusConnection::connectToBus(address, u"portal"_s)) {
        qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
        m_bus.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, this);
        m_bus.interface()->registerService(u"org.freedesktop.portal.Desktop"_s);
    }
    ~Portal() override { QDBusConnection::disconnectFromBus(u"portal"_s); }

    void setContrast(uint contrast) {
        m_contrast = contrast;
        auto signal =
            QDBusMessage::createSignal(u"/org/freedesktop/portal/desktop"_s,
                                       u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << group << u"contrast"_s << QVariant::fromValue(QDBusVariant(QVariant(m_contrast)));
        m_bus.send(signal);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() != u"ReadAll") return false;
        const QMap<QString, QVariantMap> all{{group, {{u"contrast"_s, m_contrast}}}};
        return bus.send(message.createReply(QVariant::fromValue(all)));
    }

private:
    const QString group = u"org.freedesktop.appearance"_s;
    QDBusConnection m_bus;
    uint m_contrast = 1;
};

/// The dashboard with a selected mask, whose opacity slider is a bar of the accent's colour.
class AppearanceTest : public VeylaTest {
protected:
    AppearanceTest() { startArguments.clear(); }

    void open() {
        addMask({900, 600, 60, 40});
        workspace.selectedMaskID = workspace.masks.first().id;
        workspace.hasCompletedOnboarding = true;
        start();
    }
    bool hasColor(const QColor& color) {
        const Screenshot screen(probe);
        const auto isColor = [&](const QColor& each) { return each == color; };
        return screen.count(screen.image().rect(), isColor) > 400;
    }
    bool comesToContrast(bool isIncreased) {
        return waitUntil([&] {
            return hasColor(isIncreased ? increased : usual) &&
                   !hasColor(isIncreased ? usual : increased);
        });
    }

    const QColor usual{u"#6366f1"_s}, increased{u"#a5b4fc"_s};
};

}  // namespace

TEST(XSettings, AskForLessMotionAndMoreContrast) {
    const AppearanceWishes nothing, still{.isMotionReduced = true},
        contrast{.isContrastIncreased = true};
    const auto moreBefore = [](bool isBigEndian) {
        return SettingsDocument(isBigEndian)
            .with("Net/IconThemeName", QByteArray("HighContrast"))
            .withColor("Gtk/Color")
            .with("Xft/DPI", 98304);
    };
    const auto expect = [](const SettingsDocument& document, const AppearanceWishes& expected) {
        EXPECT_EQ(XSettings::wishesIn(document.bytes()), expected)
            << document.bytes().toHex().constData();
    };
    for (const bool isBigEndian : {false, true}) {
        expect(moreBefore(isBigEndian), nothing);
        expect(moreBefore(isBigEndian).with("Gtk/EnableAnimations", 0), still);
        expect(moreBefore(isBigEndian).with("Gtk/EnableAnimations", 1), nothing);
        expect(moreBefore(isBigEndian).with("Net/ThemeName", QByteArray("Adwaita")), nothing);
        for (const char* const theme : {"HighContrast", "HighContrastInverse", "ContrastHigh"})
            expect(moreBefore(isBigEndian).with("Net/ThemeName", QByteArray(theme)), contrast);
    }
    // A document that ends too early asks for nothing that is not all there.
    const QByteArray whole = moreBefore(false).with("Gtk/EnableAnimations", 0).bytes();
    for (qsizetype size = 0; size < whole.size(); ++size)
        EXPECT_EQ(XSettings::wishesIn(whole.first(size)), nothing) << size;
    QByteArray endless = whole;
    qToLittleEndian(quint32{0xffffffff}, endless.data() + 8);
    EXPECT_EQ(XSettings::wishesIn(endless), still);
}

TEST_F(AppearanceTest, WindowsFollowTheContrastThatTheDesktopsSettingsAskFor) {
    open();
    ASSERT_TRUE(comesToContrast(false));
    auto manager = std::make_unique<SettingsManager>(desktop.displayName());
    manager->tell(SettingsDocument().with("Net/ThemeName", QByteArray("HighContrast")));
    EXPECT_TRUE(comesToContrast(true));
    manager->tell(SettingsDocument().with("Net/ThemeName", QByteArray("Adwaita")));
    EXPECT_TRUE(comesToContrast(false));
    manager->tell(SettingsDocument().with("Net/ThemeName", QByteArray("HighContrast")));
    EXPECT_TRUE(comesToContrast(true));
    manager.reset();
    EXPECT_TRUE(comesToContrast(false)) << "the wishes go with the program that told them";
}

TEST_F(AppearanceTest, WindowsFollowThePortalWheneverItComes) {
    open();
    ASSERT_TRUE(comesToContrast(false));
    Portal portal(desktop.bus().address());
    EXPECT_TRUE(comesToContrast(true));
    portal.setContrast(0);
    EXPECT_TRUE(comesToContrast(false));
}
