#include "support/desktop/X11Harness.h"

#include "support/desktop/Wait.h"

#include <QEventLoop>
#include <QTimer>
#include <cmath>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

X11Harness::X11Harness() {
    // A pointer that is where a test moves it to would not move.
    m_input.movePointer({0, 0});
    QString error;
    m_desktop = X11Desktop::open({m_mainLoop, m_log}, &error);
    if (!m_desktop) throw std::runtime_error(error.toStdString());
}

bool X11Harness::waitUntil(const std::function<bool()>& condition) {
    // A loop that goes to sleep, as the program's does: the back end looks at its connection then.
    QEventLoop loop;
    bool holds = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        holds = condition();
        if (holds) loop.quit();
    });
    poll.start(std::chrono::milliseconds(2));
    QTimer::singleShot(defaultWait, &loop, &QEventLoop::quit);
    loop.exec();
    return holds;
}

void X11Harness::settle() {
    // What is asked may make the server tell something, and that may make the back end ask again.
    for (int i = 0; i < 3; ++i) {
        xcb_connection_t* const connection = m_desktop->connection().get();
        const XcbPtr<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
        int turns = 0;
        static_cast<void>(waitUntil([&] { return ++turns == 2; }));
    }
}

void X11Harness::movePointer(Point global) {
    const QRect primary = m_monitors.current().first().frame;
    m_input.movePointer({primary.x() + static_cast<int>(std::lround(global.x)),
                         primary.y() + primary.height() - static_cast<int>(std::lround(global.y))});
}

void X11Harness::setScreens(const QList<Rect>& topLeftFrames) {
    QList<MonitorLayout::Monitor> monitors;
    for (const Rect& frame : topLeftFrames) {
        const QChar name(static_cast<char16_t>(u'A' + monitors.size()));
        monitors.append({name, QRectF(frame.x, frame.y, frame.width, frame.height).toRect()});
    }
    m_monitors.set(monitors);
}

std::vector<QUuid> X11Harness::stack() {
    std::vector<QUuid> ids;
    for (const XWindow& window : m_probe.rootChildren()) {
        const auto id = m_probe.textOf(window.id, u"_VEYLA_MASK_ID"_s);
        if (id && window.isMapped) ids.push_back(QUuid(*id));
    }
    return ids;
}
