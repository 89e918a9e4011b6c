#include "Views/Dashboard/UndoBar.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/VeylaTheme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <utility>

using namespace Qt::Literals::StringLiterals;

UndoBar::UndoBar(AppState& state, Scheduler& scheduler)
    : m_state(state), m_scheduler(scheduler), m_turnUpdate(scheduler, [this] { tell(); }) {
    setAccessibleIdentifier(*this, u"undo-bar"_s);
    hide();
    // What was done before there was a view is no news.
    m_acts = state.undoableAct.subscribe([this, isNews = false](const auto&) mutable {
        if (std::exchange(isNews, true)) m_turnUpdate.request();
    });
}

void UndoBar::build() {
    constexpr QMargins around{16, 7, 16, 7};
    m_notice = new TextLabel({}, {12}, VeylaTheme::textSecondary());
    m_undo = textButton(u"Undo"_s, {12, QFont::DemiBold}, {10, 4, 10, 4}, 7);
    setAccessibleIdentifier(*m_undo, u"undo-bar-button"_s);
    m_undo->installEventFilter(this);
    connect(m_undo, &QPushButton::clicked, this, [this] { m_state.undo(); });
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(around);
    layout->setSpacing(8);
    layout->addWidget(m_notice);
    layout->addWidget(new TextLabel(u"·"_s, {12}, VeylaTheme::textMuted()));
    layout->addWidget(m_undo);
    layout->addStretch();
}

void UndoBar::tell() {
    const auto& act = m_state.undoableAct.value();
    m_isDue = false;
    if (!act) {
        // It was undone, perhaps from here.
        m_end.reset();
        if (m_undo && m_undo->hasFocus()) parentWidget()->setFocus(Qt::OtherFocusReason);
        return hide();
    }
    if (!m_notice) build();
    m_notice->showText(act->notice());
    m_undo->setAccessibleName(u"Undo "_s + onOneLine(act->title()));
    setAccessibleName(onOneLine(act->notice()));
    // Another act is told as well; the keyboard may stay on the button.
    if (!m_undo->hasFocus()) hide();
    show();
    m_end = m_scheduler.after(shownFor, [this] {
        m_isDue = true;
        leaveIfDue();
    });
}

void UndoBar::leaveIfDue() {
    if (m_isDue && !m_undo->hasFocus() && !underMouse()) hide();
}

bool UndoBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) leaveIfDue();
    return QWidget::eventFilter(watched, event);
}

void UndoBar::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    leaveIfDue();
}

void UndoBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), VeylaTheme::sidebar());
    painter.fillRect(QRect(0, 0, width(), 1), VeylaTheme::border());
}
