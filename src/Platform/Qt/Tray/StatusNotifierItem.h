#pragma once

#include "Platform/Qt/SessionBus.h"
#include "Platform/Qt/Tray/StatusNotifierTypes.h"
#include "Platform/TrayIcon.h"

#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <memory>

class StatusNotifierMenu;

/// The icon as an item on the session bus, which the tray draws itself.
class StatusNotifierItem final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowID)
    Q_PROPERTY(QString IconName READ noName)
    Q_PROPERTY(StatusNotifierPixmaps IconPixmap READ iconPixmaps)
    Q_PROPERTY(QString OverlayIconName READ noName)
    Q_PROPERTY(QString AttentionIconName READ noName)
    Q_PROPERTY(StatusNotifierToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ isMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menuPath)
public:
    /// Registers with the watcher on the bus. `bus` must be connected and outlive the item.
    StatusNotifierItem(const TrayIcon::Actions& actions, SessionBus& bus, bool isOnLight);
    ~StatusNotifierItem() override;

    void setIsOnLight(bool isOnLight);

    QString category() const;
    QString id() const;
    QString title() const;
    QString status() const;
    int windowID() const { return 0; }
    QString noName() const { return {}; }
    StatusNotifierPixmaps iconPixmaps() const;
    StatusNotifierToolTip toolTip() const;
    bool isMenu() const { return false; }
    QDBusObjectPath menuPath() const;

    // NOLINTBEGIN(readability-identifier-naming): the names on the bus are the interface's.
    // The methods on the bus; places count in device pixels of the root.
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    /// The host shows the menu by itself.
    Q_SCRIPTABLE void ContextMenu(int /*x*/, int /*y*/) {}
    Q_SCRIPTABLE void Scroll(int /*delta*/, const QString& /*orientation*/) {}

Q_SIGNALS:
    Q_SCRIPTABLE void NewIcon();
    // NOLINTEND(readability-identifier-naming)

private:
    void registerWithWatcher();

    TrayIcon::Actions m_actions;
    SessionBus& m_bus;
    bool m_isOnLight;
    QString m_service;
    std::unique_ptr<StatusNotifierMenu> m_menu;
};
