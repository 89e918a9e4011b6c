#include "Views/Components/SheetArea.h"

#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Shadow.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr double dimness = 0.6;
constexpr int margin = 20;

}  // namespace

SheetArea::SheetArea(QWidget* host) : QWidget(host), m_host(host) {
    hide();
    // A click beside the sheet would give the keyboard to the host.
    setFocusPolicy(Qt::ClickFocus);
    m_fade.setStartValue(0.0);
    m_fade.setEndValue(1.0);
    connect(&m_fade, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    host->installEventFilter(this);
}

SheetArea::~SheetArea() {
    disconnect(m_focusWatch);
}

void SheetArea::present(SheetLevel level, const SheetContent& content) {
    auto* const sheet = new Sheet(content, this);
    const bool isFirst = m_sheets.empty();
    m_sheets.emplace(level, sheet);
    if (isFirst) open();
    showTopmost();
}

void SheetArea::dismiss(SheetLevel level) {
    const auto found = m_sheets.find(level);
    if (found == m_sheets.end()) return;
    Sheet* const sheet = found->second;
    m_sheets.erase(found);
    // The keyboard first: it would wander when what has it goes.
    m_sheets.empty() ? close() : showTopmost();
    sheet->hide();
    // It may be the one whose key is being handled.
    sheet->deleteLater();
}

void SheetArea::open() {
    QWidget* const focused = m_host->window()->focusWidget();
    m_waitingForKeyboard = focused && m_host->isAncestorOf(focused) ? focused : m_host;
    m_focusWatch = connect(qApp, &QApplication::focusChanged, this,
                           [this](QWidget*, QWidget* now) { keepKeyboard(now); });
    setGeometry(m_host->rect());
    raise();
    show();
    m_fade.setDuration(motionDuration(fadeMilliseconds));
    m_fade.start();
    isPresenting.set(true);
}

void SheetArea::close() {
    disconnect(m_focusWatch);
    m_fade.stop();
    isPresenting.set(false);
    QWidget* const next = m_waitingForKeyboard;
    (next && next->isVisible() && next->isEnabled() ? next : m_host)
        ->setFocus(Qt::OtherFocusReason);
    hide();
}

void SheetArea::showTopmost() {
    Sheet* const shown = topmost();
    place(*shown);
    shown->show();
    shown->takeKeyboard();
    for (const auto& [level, sheet] : m_sheets)
        if (sheet != shown) sheet->hide();
    update();
}

void SheetArea::place(Sheet& sheet) {
    sheet.placeIn(rect().adjusted(margin, margin, -margin, -margin));
}

// The menus of the window may have the keyboard; what lies behind the sheet may not.
void SheetArea::keepKeyboard(QWidget* focused) {
    const bool isBehind = focused && (focused == m_host || m_host->isAncestorOf(focused)) &&
                          focused != this && !isAncestorOf(focused);
    if (!isBehind || !topmost()) return;
    m_waitingForKeyboard = focused;
    topmost()->takeKeyboard();
}

bool SheetArea::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_host && event->type() == QEvent::Resize && topmost()) {
        setGeometry(m_host->rect());
        place(*topmost());
    }
    return QWidget::eventFilter(watched, event);
}

void SheetArea::paintEvent(QPaintEvent* /*event*/) {
    const double shown =
        m_fade.state() == QVariantAnimation::Running ? m_fade.currentValue().toDouble() : 1;
    QPainter painter(this);
    painter.fillRect(rect(), VeylaTheme::withOpacity(Qt::black, dimness * shown));
    if (topmost())
        paintShadow(painter, topmost()->geometry(), VeylaCardModifier::cornerRadius,
                    {VeylaTheme::withOpacity(Qt::black, 0.5), 28, {0, 10}});
}

void SheetArea::mousePressEvent(QMouseEvent* event) {
    event->accept();
}

void SheetArea::focusInEvent(QFocusEvent* /*event*/) {
    if (topmost()) topmost()->takeKeyboard();
}
