#pragma once

#include <QtGlobal>

/// Drops everything that Qt reports during its life: for programs that answer on standard error
/// themselves, line by line.
class [[nodiscard]] SilentQtMessages {
public:
    SilentQtMessages() : m_previous(qInstallMessageHandler(drop)) {}
    SilentQtMessages(const SilentQtMessages&) = delete;
    SilentQtMessages& operator=(const SilentQtMessages&) = delete;
    ~SilentQtMessages() { qInstallMessageHandler(m_previous); }

private:
    static void drop(QtMsgType, const QMessageLogContext&, const QString&) {}

    QtMessageHandler m_previous;
};
