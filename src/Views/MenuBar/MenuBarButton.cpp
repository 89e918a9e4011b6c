#include "Views/MenuBar/MenuBarButton.h"

#include "Drawing/SymbolPainter.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int verticalPadding = 6;

Symbol symbol(const QString& name, const QColor& color) {
    return {name, 10, SymbolWeight::regular, color};
}

}  // namespace

MenuBarButton::MenuBarButton(const QString& icon, const QString& title, const QColor& iconColor,
                             const QColor& titleColor, std::function<void()> action,
                             QWidget* parent)
    : PanelButton(title, parent),
      m_icon(icon),
      m_iconColor(iconColor),
      m_titleColor(titleColor),
      m_font(systemFont({11, QFont::Medium})) {
    connect(this, &QPushButton::clicked, this, std::move(action));
}

void MenuBarButton::show(const QString& icon, const QString& title) {
    if (icon == m_icon && title == text()) return;
    m_icon = icon;
    setText(title);
    update();
}

QSize MenuBarButton::sizeHint() const {
    const double symbolSide = symbol(m_icon, m_iconColor).side();
    const int height =
        std::max(QFontMetrics(m_font).height(), static_cast<int>(std::ceil(symbolSide)));
    return {2 * PanelRow::horizontalPadding + PanelRow::symbolBox + PanelRow::gap,
            height + 2 * verticalPadding};
}

void MenuBarButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    beginPaint(painter);
    if (isEnabled() && underMouse())
        paintPanel(painter, rect(), PanelRow::cornerRadius,
                   VeylaTheme::withOpacity(VeylaTheme::accentBlue(), 0.12));
    SymbolPainter::paint(painter, symbol(m_icon, m_iconColor),
                         {PanelRow::horizontalPadding + PanelRow::symbolBox / 2.0, height() / 2.0});
    const int left = PanelRow::horizontalPadding + PanelRow::symbolBox + PanelRow::gap;
    paintLine(painter, m_line, rect().adjusted(left, 0, -PanelRow::horizontalPadding, 0), text(),
              m_font, m_titleColor);
    paintFocus(painter);
}
