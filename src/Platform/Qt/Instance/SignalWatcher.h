#pragma once

#include <QSocketNotifier>
#include <functional>

/// Turns SIGINT, SIGTERM and SIGHUP into calls from the event loop. A signal that was ignored when
/// the process started, as nohup does with SIGHUP, stays ignored. At most one object at a time;
/// needs a QCoreApplication. Once it was made, none of these signals ends the process by itself, so
/// that a second one cannot cut an orderly end short; SIGQUIT and SIGKILL still do.
class SignalWatcher {
public:
    /// Signals that come before the event loop runs are told when it does; several that come in
    /// one burst are told once.
    explicit SignalWatcher(std::function<void()> onSignal);
    SignalWatcher(const SignalWatcher&) = delete;
    SignalWatcher& operator=(const SignalWatcher&) = delete;
    /// From now on the signals do nothing.
    ~SignalWatcher();

private:
    int m_event;
    QSocketNotifier m_notifier;
};
