#include "Views/MenuBar/PanelHead.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/AppIconView.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/MenuBar/ColorDot.h"

#include <QPainter>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int sidePadding = 14;
constexpr int topPadding = 14;
constexpr int bottomPadding = 10;
constexpr int iconSide = 28;
constexpr int lineGap = 1;
constexpr int frontmostDot = 5;
constexpr int dotGap = 6;

int heightOf(const QWidget* view) {
    return view->sizeHint().height();
}

/// Puts the view between two places, in the middle of a line.
void putInLine(QWidget* view, int left, int right, int top, int height) {
    const int own = std::min(height, heightOf(view));
    view->setGeometry(left, top + (height - own) / 2, right - left, own);
}

}  // namespace

PanelHead::PanelHead(QWidget* parent)
    : QWidget(parent),
      m_title(new TextLabel(u"Veyla"_s, {13, QFont::Bold}, VeylaTheme::textPrimary())),
      m_count(new TextLabel({}, {10, QFont::Medium}, VeylaTheme::textSecondary())),
      m_status(new ColorDot(7, VeylaTheme::accentGreen(), this)),
      m_frontmost(new TextLabel({}, {10, QFont::Medium}, VeylaTheme::textMuted())) {
    setAccessibleIdentifier(*m_count, u"panel-overlay-count"_s);
    setAccessibleIdentifier(*m_status, u"panel-status"_s);
    setAccessibleIdentifier(*m_frontmost, u"panel-frontmost-app"_s);
    for (QWidget* const line : {m_title, m_count, m_frontmost})
        line->setParent(this);
}

void PanelHead::show(int overlayCount, bool areMasksVisible, const QString& frontmostAppName) {
    m_count->showText(u"%1 active overlays"_s.arg(overlayCount));
    m_frontmost->showText(frontmostAppName);
    m_status->setColor(areMasksVisible ? VeylaTheme::accentGreen() : VeylaTheme::accentRed());
    const QString status = areMasksVisible ? u"Masks are shown"_s : u"Masks are hidden"_s;
    if (m_status->accessibleName() == status) return;
    m_status->setAccessibleName(status);
    m_status->setToolTip(status);
}

int PanelHead::programHeight() const {
    return std::max(iconSide, heightOf(m_title) + lineGap + heightOf(m_count));
}

QSize PanelHead::sizeHint() const {
    return {0,
            topPadding + programHeight() + bottomPadding + heightOf(m_frontmost) + bottomPadding};
}

void PanelHead::resizeEvent(QResizeEvent* /*event*/) {
    constexpr int iconGap = 10;
    const int program = programHeight();
    const int right = width() - sidePadding;
    const int textLeft = sidePadding + iconSide + iconGap;
    const int textRight = right - m_status->width() - iconGap;
    const int lines = heightOf(m_title) + lineGap + heightOf(m_count);
    const int titleTop = topPadding + (program - lines) / 2;
    putInLine(m_title, textLeft, textRight, titleTop, heightOf(m_title));
    putInLine(m_count, textLeft, textRight, titleTop + heightOf(m_title) + lineGap,
              heightOf(m_count));
    m_status->move(right - m_status->width(), topPadding + (program - m_status->height()) / 2);
    putInLine(m_frontmost, sidePadding + frontmostDot + dotGap, right,
              topPadding + program + bottomPadding, heightOf(m_frontmost));
}

void PanelHead::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintApplicationIcon(painter, {sidePadding, topPadding + (programHeight() - iconSide) / 2},
                         iconSide);
    const QRect line = m_frontmost->geometry();
    paintDot(painter,
             QRectF(sidePadding, line.top() + (line.height() - frontmostDot) / 2.0, frontmostDot,
                    frontmostDot),
             VeylaTheme::accentBlue());
}
