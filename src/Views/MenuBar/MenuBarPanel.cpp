#include "Views/MenuBar/MenuBarPanel.h"

#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/MenuBar/MenuBarView.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace {

// A tray that tells only where it was clicked has icons of about this size.
constexpr int iconReach = 16;

// What is kept in view above and below the row that has the keyboard.
constexpr int rowMargin = 8;

// Of the line that tells the panel from what lies around it.
constexpr int borderWidth = 1;

QRect around(const QPoint& point) {
    return QRect(point, QSize(1, 1)).adjusted(-iconReach, -iconReach, iconReach, iconReach);
}

}  // namespace

MenuBarPanel::MenuBarPanel(AppState& state, Scheduler& scheduler, PointerPresses& presses,
                           std::function<void()> openSettings)
    // Above the masks: they lie above every window that the window manager knows.
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint),
      m_scheduler(scheduler),
      m_presses(presses),
      m_view(new MenuBarView(state, scheduler,
                             {std::move(openSettings), [this] { hide(); },
                              [this] {
                                  if (isVisible()) fit();
                              }})) {
    setWindowTitle(QStringLiteral("Veyla Panel"));
    setAttribute(Qt::WA_X11NetWmWindowTypePopupMenu);
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_view->setParent(this);
    connect(qApp, &QGuiApplication::focusWindowChanged, this,
            [this](const QWindow* focused) { followFocus(focused); });
}

// Taking it apart moves the keyboard.
MenuBarPanel::~MenuBarPanel() {
    disconnect(qApp, nullptr, this, nullptr);
    if (m_area) disconnect(qApp, nullptr, m_area, nullptr);
}

void MenuBarPanel::makeScrollArea() {
    m_area = new QScrollArea(this);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setWidgetResizable(true);
    m_area->setFocusPolicy(Qt::NoFocus);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    styleScrollBar(*m_area);
    m_area->setWidget(m_view);
    m_area->show();
    // The area follows the Tab key by itself, but no other way to move.
    connect(qApp, &QApplication::focusChanged, m_area, [this](QWidget*, QWidget* focused) {
        if (focused && focused != m_view && m_view->isAncestorOf(focused))
            m_area->ensureWidgetVisible(focused, 0, rowMargin);
    });
}

void MenuBarPanel::toggle(const QRect& anchor) {
    isVisible() ? hide() : open(anchor);
}

void MenuBarPanel::open(const QRect& anchor) {
    m_anchor = anchor.isNull() ? QRect(QCursor::pos(), QSize(1, 1)) : anchor;
    m_view->refresh();
    if (m_area) m_area->verticalScrollBar()->setValue(0);
    fit();
    show();
    raise();
    takeKeyboard();
    m_outsidePresses = m_presses.onPress([this](auto button) { pressed(button); });
    // A menu that opened the panel has asked the window manager for the keyboard of its own window.
    // The answer may come later than the panel's own request.
    m_keyboardSettles = m_scheduler.after(keyboardDelay, [this] { settleKeyboard(); });
}

void MenuBarPanel::settleKeyboard() {
    m_keyboardSettles.reset();
    const QWindow* const focused = QGuiApplication::focusWindow();
    if (focused && focused != windowHandle()) return takeKeyboard();
    const bool isTakenByAnotherProgram = m_hasFocus && !focused;
    if (isTakenByAnotherProgram) hide();
}

void MenuBarPanel::takeKeyboard() {
    m_hasFocus = QGuiApplication::focusWindow() == windowHandle();
    activateWindow();
    // When it was closed only a moment ago, the toolkit has not yet noticed that the keyboard was
    // gone, and would not notice that it comes back.
    if (m_hasFocus) QApplication::setActiveWindow(this);
    // The keyboard starts here, without a ring around any row.
    m_view->setFocus();
}

void MenuBarPanel::fit() {
    const QScreen* screen = QGuiApplication::screenAt(m_anchor.center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    const QRect available = screen->availableGeometry();
    const int width = qRound(MenuBarView::panelWidth * textScale()) + 2 * borderWidth;
    const int needed = m_view->neededHeight() + 2 * borderWidth;
    const QSize size = QSize(width, needed).boundedTo(available.size());
    resize(size);
    if (!m_area && needed > size.height()) makeScrollArea();
    QWidget* const content = m_area ? static_cast<QWidget*>(m_area) : m_view;
    content->setGeometry(rect().adjusted(borderWidth, borderWidth, -borderWidth, -borderWidth));
    move(placeBeside(m_anchor, size, available).topLeft());
    // A mask that was brought to the front lies above everything else.
    raise();
}

QRect MenuBarPanel::placeBeside(const QRect& anchor, const QSize& size, const QRect& available) {
    QRect place(QPoint(anchor.center().x() - size.width() / 2, anchor.bottom() + 1), size);
    if (place.bottom() > available.bottom()) place.moveBottom(anchor.top() - 1);
    // The corner of a screen that is smaller than the panel is where it begins.
    place.moveRight(std::min(place.right(), available.right()));
    place.moveBottom(std::min(place.bottom(), available.bottom()));
    place.moveLeft(std::max(place.left(), available.left()));
    place.moveTop(std::max(place.top(), available.top()));
    return place;
}

void MenuBarPanel::pressed(PointerPresses::Button button) {
    const QPoint pointer = QCursor::pos();
    if (frameGeometry().contains(pointer)) return;
    const QRect icon = m_anchor.width() > 1 ? m_anchor : around(m_anchor.topLeft());
    const bool isToggle = button == PointerPresses::Button::primary && icon.contains(pointer);
    if (!isToggle) hide();
}

// The content covers all but the border, and a scroll area covers nothing but its content.
void MenuBarPanel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (m_area) painter.fillRect(rect(), VeylaTheme::panel());
    const QColor color = colorOver(VeylaTheme::border(), VeylaTheme::panel());
    const int right = width() - borderWidth;
    const int bottom = height() - borderWidth;
    painter.fillRect(0, 0, width(), borderWidth, color);
    painter.fillRect(0, bottom, width(), borderWidth, color);
    painter.fillRect(0, 0, borderWidth, height(), color);
    painter.fillRect(right, 0, borderWidth, height(), color);
}

void MenuBarPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        hide();
    else
        QWidget::keyPressEvent(event);
}

void MenuBarPanel::hideEvent(QHideEvent* event) {
    m_outsidePresses.reset();
    m_keyboardSettles.reset();
    QWidget::hideEvent(event);
}

// Deactivation would not do: a tool window counts as active with any other window of the program.
void MenuBarPanel::followFocus(const QWindow* focused) {
    const bool isHere = focused == windowHandle();
    if (m_keyboardSettles.isActive())
        m_hasFocus |= isHere;
    else if (std::exchange(m_hasFocus, isHere) && !isHere)
        hide();
}
