#include "Platform/Qt/PortalSettings.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <array>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QLatin1StringView serviceName{"org.freedesktop.portal.Desktop"};
constexpr QLatin1StringView objectPath{"/org/freedesktop/portal/desktop"};
constexpr QLatin1StringView interfaceName{"org.freedesktop.portal.Settings"};

/// A setting of the portal, and whether a value of it asks for something.
struct WishSetting {
    QString group;
    QString key;
    PortalWish wish;
    bool (*isAskedBy)(const QVariant& value);
};

bool isOn(const QVariant& value) {
    return value.toBool();
}
bool isOff(const QVariant& value) {
    return value.isValid() && !value.toBool();
}
// KDE writes the factor as text; 0 stands for no animations.
bool isZero(const QVariant& value) {
    bool isNumber = false;
    const double factor = value.toDouble(&isNumber);
    return isNumber && factor == 0;
}
// In the freedesktop group, 1 stands for the wish, 0 for none; of the colours, 1 for dark ones.
bool isOne(const QVariant& value) {
    return value.toUInt() == 1;
}
bool isTwo(const QVariant& value) {
    return value.toUInt() == 2;
}
bool namesContrastTheme(const QVariant& value) {
    return isContrastTheme(value.toString());
}

const std::array<WishSetting, 7>& wishSettings() {
    static const std::array<WishSetting, 7> settings{{
        {u"org.freedesktop.appearance"_s, u"contrast"_s, PortalWish::increasedContrast, isOne},
        {u"org.freedesktop.appearance"_s, u"color-scheme"_s, PortalWish::lightColors, isTwo},
        {u"org.freedesktop.appearance"_s, u"reduced-motion"_s, PortalWish::reducedMotion, isOne},
        {u"org.gnome.desktop.a11y.interface"_s, u"high-contrast"_s, PortalWish::increasedContrast,
         isOn},
        {u"org.gnome.desktop.interface"_s, u"enable-animations"_s, PortalWish::reducedMotion,
         isOff},
        {u"org.gnome.desktop.interface"_s, u"gtk-theme"_s, PortalWish::increasedContrast,
         namesContrastTheme},
        {u"org.kde.kdeglobals.KDE"_s, u"AnimationDurationFactor"_s, PortalWish::reducedMotion,
         isZero},
    }};
    return settings;
}

}  // namespace

PortalSettings::PortalSettings() {
    QMetaObject::invokeMethod(this, &PortalSettings::connectToBus, Qt::QueuedConnection);
}

void PortalSettings::connectToBus() {
    m_bus = std::make_unique<SessionBus>(u"veyla-portal-settings"_s);
    if (!m_bus->isConnected()) return;
    QDBusConnection& bus = m_bus->connection();
    qDBusRegisterMetaType<Groups>();
    auto* const watcher =
        new QDBusServiceWatcher(serviceName, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { readAll(); });
    bus.connect(serviceName, objectPath, interfaceName, u"SettingChanged"_s, this,
                SLOT(noteChange(QDBusMessage)));
    readAll();
}

void PortalSettings::readAll() {
    QDBusMessage call =
        QDBusMessage::createMethodCall(serviceName, objectPath, interfaceName, u"ReadAll"_s);
    QStringList groups;
    for (const WishSetting& setting : wishSettings())
        if (!groups.contains(setting.group)) groups << setting.group;
    call << groups;
    call.setAutoStartService(false);
    auto* const watcher = new QDBusPendingCallWatcher(m_bus->connection().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<Groups> reply = *watcher;
        if (reply.isError()) return;
        const Groups answer = reply.value();
        m_askers.clear();
        for (auto group = answer.begin(); group != answer.end(); ++group)
            for (auto entry = group->begin(); entry != group->end(); ++entry)
                note(group.key(), entry.key(), entry.value());
        publish();
    });
}

void PortalSettings::noteChange(const QDBusMessage& change) {
    const QList<QVariant> parts = change.arguments();
    if (change.signature() != u"ssv") return;
    note(parts.at(0).toString(), parts.at(1).toString(),
         parts.at(2).value<QDBusVariant>().variant());
    publish();
}

void PortalSettings::note(const QString& group, const QString& key, const QVariant& value) {
    for (const WishSetting& setting : wishSettings()) {
        if (setting.group != group || setting.key != key) continue;
        auto& askers = m_askers[setting.wish];
        const QString name = group + u' ' + key;
        if (setting.isAskedBy(value))
            askers.insert(name);
        else
            askers.remove(name);
    }
}

void PortalSettings::publish() {
    const auto isAskedFor = [this](PortalWish wish) { return !m_askers[wish].isEmpty(); };
    const AppearanceWishes wishes{.isMotionReduced = isAskedFor(PortalWish::reducedMotion),
                                  .isContrastIncreased = isAskedFor(PortalWish::increasedContrast)};
    if (wishes != m_wishes.newest()) m_wishes.set(wishes);
    const bool prefersLight = isAskedFor(PortalWish::lightColors);
    if (prefersLight != m_prefersLightColors.newest()) m_prefersLightColors.set(prefersLight);
}
