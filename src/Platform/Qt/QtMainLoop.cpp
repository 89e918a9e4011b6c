#include "Platform/Qt/QtMainLoop.h"

#include <QCoreApplication>
#include <QTimer>
#include <memory>
#include <utility>

void QtMainLoop::post(std::function<void()> task) {
    QMetaObject::invokeMethod(&m_context, std::move(task), Qt::QueuedConnection);
}

Subscription QtMainLoop::after(std::chrono::milliseconds delay, std::function<void()> task) {
    // Shared with its own firing, because the task may let go of the handle.
    const auto timer = std::make_shared<QTimer>();
    timer->setSingleShot(true);
    QObject::connect(timer.get(), &QTimer::timeout, &m_context,
                     [weakTimer = std::weak_ptr(timer), task = std::move(task)] {
                         const auto pinnedTimer = weakTimer.lock();
                         const auto pinnedTask = task;
                         pinnedTask();
                     });
    timer->start(delay);
    return Subscription([timer] { timer->stop(); });
}

int QtMainLoop::run() {
    return QCoreApplication::exec();
}

void QtMainLoop::quit(int status) {
    // Posted, so that it also ends a loop that is only about to start.
    QMetaObject::invokeMethod(
        &m_context, [status] { QCoreApplication::exit(status); }, Qt::QueuedConnection);
}
