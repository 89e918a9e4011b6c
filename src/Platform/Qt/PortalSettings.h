#pragma once

#include "Models/AppearanceWishes.h"
#include "Platform/Qt/SessionBus.h"
#include "Reactive/Published.h"

#include <QDBusMessage>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QVariantMap>
#include <map>
#include <memory>

enum class PortalWish { reducedMotion, increasedContrast, lightColors };

/// The settings that a desktop tells its programs through the Settings portal of
/// xdg-desktop-portal, and through the groups of GNOME's and KDE's own settings that the portal
/// passes on. Never starts the portal: where none runs, nobody has wished for anything, until one
/// comes. Asks in a later turn, so that the start does not wait for the bus.
class PortalSettings final : public QObject {
    Q_OBJECT

public:
    PortalSettings();

    /// Nothing until the portal has answered.
    const Published<AppearanceWishes>& wishes() const { return m_wishes; }
    /// Whether the user prefers dark text on light grounds, in panels too.
    const Published<bool>& prefersLightColors() const { return m_prefersLightColors; }

private Q_SLOTS:
    void noteChange(const QDBusMessage& change);

private:
    using Groups = QMap<QString, QVariantMap>;

    void connectToBus();
    void readAll();
    void note(const QString& group, const QString& key, const QVariant& value);
    void publish();

    /// Null before the portal is asked.
    std::unique_ptr<SessionBus> m_bus;
    // The settings that ask for each wish, since a desktop may tell of one in several of them.
    std::map<PortalWish, QSet<QString>> m_askers;
    Published<AppearanceWishes> m_wishes;
    Published<bool> m_prefersLightColors{false};
};
