#include "support/desktop/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace {

bool belongsToTheOuterDesktop(const QString& name) {
    static const QRegularExpression names(
        u"^((XDG|QT|LC|DBUS|GTK|VEYLA)_.*|(WAYLAND_)?DISPLAY|XAUTHORITY|SESSION_MANAGER|LANGUAGE|"
        "DESKTOP_SESSION|AT_SPI_BUS_ADDRESS|DESKTOP_STARTUP_ID)$"_s);
    return names.match(name).hasMatch();
}

}  // namespace

TemporaryHome::TemporaryHome() : m_folder(QDir::tempPath() + u"/veyla-XXXXXX"_s) {
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
    environment.insert(u"HOME"_s, path());
    environment.insert(u"XDG_DATA_HOME"_s, dataFolder());
    environment.insert(u"XDG_CONFIG_HOME"_s, configFolder());
    environment.insert(u"XDG_CACHE_HOME"_s, cacheFolder());
    environment.insert(u"XDG_STATE_HOME"_s, stateFolder());
    environment.insert(u"XDG_RUNTIME_DIR"_s, runtimeFolder());
    environment.insert(u"LANG"_s, u"C.UTF-8"_s);
    // GLib programs would start a settings daemon otherwise.
    environment.insert(u"GSETTINGS_BACKEND"_s, u"memory"_s);
    return environment;
}
