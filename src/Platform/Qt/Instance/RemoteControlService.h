#pragma once

#include "App/RemoteCommands.h"
#include "Platform/Qt/SessionBus.h"
#include "Platform/SystemLog.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

/// Lets other processes send command lines to this one over the session bus. The bus name lasts
/// as long as the object: that it goes tells others that the program has ended, so let everything
/// that matters to them, such as the workspace, go first.
class RemoteControlService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.veyla.Veyla")
public:
    using Perform = std::function<CommandResult(const QStringList& arguments)>;

    /// `log` must outlive the service.
    explicit RemoteControlService(SystemLog& log);
    ~RemoteControlService() override;

    /// Answers from now on, and takes the bus name. Without a bus, or while another process has
    /// the name, it is logged and nothing can reach this process; the name is taken over when the
    /// other one lets it go.
    void start(Perform perform);

    /// The method on the bus: returns the exit status.
    Q_SCRIPTABLE int perform(const QStringList& arguments, QString& output, QString& error);

private:
    SystemLog& m_log;
    SessionBus m_bus;
    Perform m_perform;
};
