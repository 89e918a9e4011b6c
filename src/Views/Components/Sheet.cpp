#include "Views/Components/Sheet.h"

#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLayout>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <algorithm>

namespace {

constexpr int scrollBarWidth = 10;

}  // namespace

Sheet::Sheet(const SheetContent& content, QWidget* parent)
    : QWidget(parent),
      m_content(content),
      m_scrollArea(new QScrollArea(this)),
      m_firstFocus(content.firstFocus) {
    setAccessibleName(content.title);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);
    m_scrollArea->viewport()->setAutoFillBackground(false);
    styleScrollBar(*m_scrollArea);
    m_scrollArea->setWidget(content.view);
    content.view->setAutoFillBackground(false);
    content.view->installEventFilter(this);
}

void Sheet::placeIn(const QRect& room) {
    m_room = room;
    const QSize size = contentSize(room.size());
    QRect place(QPoint(), size.boundedTo(room.size()));
    place.moveCenter(room.center());
    setGeometry(place);
    // The shadow around it.
    parentWidget()->update();
    m_scrollArea->setGeometry(rect());
    const int scrolling = size.height() > place.height() ? scrollBarWidth : 0;
    m_content.view->resize(size.width() - scrolling, size.height());
}

// At its own width as high as it wants to be; where there is no room for that, as low as it can be.
QSize Sheet::contentSize(const QSize& available) const {
    const QLayout& layout = *m_content.view->layout();
    const int wanted = std::min(qRound(m_content.width * textScale()), available.width());
    const int width = std::max(wanted, layout.totalMinimumSize().width());
    const bool isFlexible = layout.hasHeightForWidth();
    const int natural =
        isFlexible ? layout.totalHeightForWidth(width) : layout.totalSizeHint().height();
    if (natural <= available.height()) return {width, natural};
    const int least = isFlexible ? layout.minimumHeightForWidth(width - scrollBarWidth)
                                 : layout.totalMinimumSize().height();
    return {width, std::max(least, available.height())};
}

void Sheet::takeKeyboard() {
    QWidget* const former = focusWidget();
    if (former && isAncestorOf(former))
        former->setFocus(Qt::OtherFocusReason);
    else if (m_firstFocus)
        m_firstFocus->setFocus(Qt::TabFocusReason);
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_content.view && event->type() == QEvent::LayoutRequest) placeIn(m_room);
    return QWidget::eventFilter(watched, event);
}

void Sheet::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const VeylaCardModifier look;
    paintPanel(painter, rect(), VeylaCardModifier::cornerRadius, m_content.ground);
    look.paintBorder(painter, rect());
}

// What comes here was of no use to what has the keyboard.
void Sheet::keyPressEvent(QKeyEvent* event) {
    QScrollBar& scrollBar = *m_scrollArea->verticalScrollBar();
    switch (event->key()) {
        case Qt::Key_Escape:
            return m_content.onDismiss();
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (m_content.onSubmit) m_content.onSubmit();
            return;
        case Qt::Key_PageUp:
            return scrollBar.triggerAction(QScrollBar::SliderPageStepSub);
        case Qt::Key_PageDown:
            return scrollBar.triggerAction(QScrollBar::SliderPageStepAdd);
        default:
            // Nothing behind the sheet hears of it.
            event->accept();
    }
}

bool Sheet::focusNextPrevChild(bool isNext) {
    const QWidget* const start = focusWidget() ? focusWidget() : this;
    const auto after = [&](const QWidget* view) {
        return isNext ? view->nextInFocusChain() : view->previousInFocusChain();
    };
    for (QWidget* each = after(start); each != start; each = after(each)) {
        const bool takesTab = (each->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
        if (!takesTab || !each->isVisible() || !each->isEnabled() || !isAncestorOf(each)) continue;
        each->setFocus(isNext ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        break;
    }
    return true;
}
