#include "Platform/Qt/QtApplicationHost.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <algorithm>

namespace {

// Menus, tooltips and tool windows are in no task bar anyway.
bool mayBeListed(const QWidget& window) {
    return window.windowType() == Qt::Window || window.windowType() == Qt::Dialog;
}

}  // namespace

class QtHostWindow final : public HostWindow {
public:
    QtHostWindow(QWidget& widget, WindowManagement& windowManagement)
        : m_widget(widget), m_windowManagement(windowManagement) {}

    QString title() const override { return m_widget.windowTitle(); }
    bool isPanel() const override { return m_widget.windowType() != Qt::Window; }
    bool hasContentView() const override { return !m_widget.children().isEmpty(); }
    bool isVisible() const override { return m_widget.isVisible() && !m_widget.isMinimized(); }
    void orderOut() override { m_widget.hide(); }
    void makeKeyAndOrderFront() override;

    const QWidget* widget() const { return &m_widget; }
    void setIsListed(bool isListed) {
        // One without a native window is told when it is shown.
        if (m_widget.testAttribute(Qt::WA_WState_Created) && mayBeListed(m_widget))
            m_windowManagement.setIsListed(m_widget.winId(), isListed);
    }

private:
    QWidget& m_widget;
    WindowManagement& m_windowManagement;
};

void QtHostWindow::makeKeyAndOrderFront() {
    if (m_widget.isMinimized())
        m_widget.setWindowState(m_widget.windowState() & ~Qt::WindowMinimized);
    m_widget.show();
    m_widget.raise();
    m_widget.activateWindow();
    m_windowManagement.activate(m_widget.winId());
}

QtApplicationHost::QtApplicationHost(WindowManagement& windowManagement)
    : m_windowManagement(windowManagement) {
    qApp->installEventFilter(this);
}

QtApplicationHost::~QtApplicationHost() = default;

void QtApplicationHost::setActivationPolicy(ActivationPolicy policy) {
    if (m_policy == policy) return;
    m_policy = policy;
    takeInNewWindows();
    for (const auto& window : m_windows)
        window->setIsListed(policy == ActivationPolicy::regular);
}

void QtApplicationHost::activateIgnoringOtherApps() {
    // The desktop knows windows, not programs: the one that is in front among ours comes.
    if (const QWidget* const window = QApplication::activeWindow())
        m_windowManagement.activate(window->effectiveWinId());
}

std::vector<std::shared_ptr<HostWindow>> QtApplicationHost::windows() {
    takeInNewWindows();
    return {m_windows.begin(), m_windows.end()};
}

void QtApplicationHost::takeInNewWindows() {
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget* const widget : widgets)
        takeIn(*widget);
}

void QtApplicationHost::takeIn(QWidget& widget) {
    const auto isIt = [&widget](const auto& window) { return window->widget() == &widget; };
    if (std::any_of(m_windows.begin(), m_windows.end(), isIt)) return;
    m_windows.push_back(std::make_shared<QtHostWindow>(widget, m_windowManagement));
    connect(&widget, &QObject::destroyed, this, [this, isIt] { std::erase_if(m_windows, isIt); });
}

bool QtApplicationHost::eventFilter(QObject* watched, QEvent* event) {
    auto* const widget = event->type() == QEvent::Show ? qobject_cast<QWidget*>(watched) : nullptr;
    if (!widget || !widget->isWindow()) return false;
    // The toolkit lists its windows in no order.
    takeIn(*widget);
    if (m_policy == ActivationPolicy::accessory && mayBeListed(*widget))
        m_windowManagement.setIsListed(widget->winId(), false);
    return false;
}
