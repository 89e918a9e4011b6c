#include "support/desktop/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <stdexcept>

namespace {

bool belongsToTheOuterDesktop(const QString& name) {
    for (const QString& prefix :
         {QStringLiteral("XDG_"), QStringLiteral("QT_"), QStringLiteral("LC_"),
          QStringLiteral("DBUS_"), QStringLiteral("GTK_"), QStringLiteral("VEYLA_")}) {
        if (name.startsWith(prefix)) return true;
    }
    return QStringList{QStringLiteral("DISPLAY"),         QStringLiteral("WAYLAND_DISPLAY"),
                       QStringLiteral("XAUTHORITY"),      QStringLiteral("SESSION_MANAGER"),
                       QStringLiteral("DESKTOP_SESSION"), QStringLiteral("AT_SPI_BUS_ADDRESS"),
                       QStringLiteral("LANGUAGE"),        QStringLiteral("DESKTOP_STARTUP_ID")}
        .contains(name);
}

}  // namespace

TemporaryHome::TemporaryHome() : m_folder(QDir::tempPath() + QStringLiteral("/veyla-XXXXXX")) {
    for (const QString& folder :
         {dataFolder(), configFolder(), cacheFolder(), stateFolder(), runtimeFolder()}) {
        if (!m_folder.isValid() || !QDir().mkpath(folder)) {
            throw std::runtime_error("no temporary home: " + m_folder.errorString().toStdString());
        }
    }
    QFile::setPermissions(runtimeFolder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QProcessEnvironment TemporaryHome::environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : environment.keys()) {
        if (belongsToTheOuterDesktop(name)) environment.remove(name);
    }
    environment.insert(QStringLiteral("HOME"), path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), dataFolder());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configFolder());
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), cacheFolder());
    environment.insert(QStringLiteral("XDG_STATE_HOME"), stateFolder());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeFolder());
    environment.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    // GLib programs would start a settings daemon otherwise.
    environment.insert(QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("memory"));
    return environment;
}
