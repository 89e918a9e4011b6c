#include "Views/Dashboard/FeatureBadge.h"

#include "Views/Design/Typography.h"
#include "Views/Design/VeylaTheme.h"

#include <QFontMetrics>
#include <QPainter>

namespace {

constexpr int verticalPadding = 6;
constexpr int gap = 2;

QFont valueFont() {
    return systemFont({12, QFont::Bold});
}

QFont titleFont() {
    return systemFont({9, QFont::DemiBold});
}

}  // namespace

FeatureBadge::FeatureBadge(const QString& title) : m_title(title) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void FeatureBadge::showValue(const QString& value, const QColor& valueColor) {
    if (value == m_value && valueColor == m_valueColor) return;
    m_value = value;
    m_valueColor = valueColor;
    setAccessibleName(m_title + QStringLiteral(": ") + m_value);
    update();
}

QSize FeatureBadge::sizeHint() const {
    const QFontMetrics valueMetrics(valueFont());
    const QFontMetrics titleMetrics(titleFont());
    return {titleMetrics.horizontalAdvance(m_title) + 2 * verticalPadding,
            valueMetrics.height() + gap + titleMetrics.height() + 2 * verticalPadding};
}

void FeatureBadge::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const int valueHeight = QFontMetrics(valueFont()).height();
    painter.setFont(valueFont());
    painter.setPen(m_valueColor.isValid() ? m_valueColor : VeylaTheme::textPrimary());
    painter.drawText(QRect(0, verticalPadding, width(), valueHeight), Qt::AlignCenter, m_value);
    painter.setFont(titleFont());
    painter.setPen(VeylaTheme::textMuted());
    painter.drawText(
        QRect(0, verticalPadding + valueHeight + gap, width(), QFontMetrics(titleFont()).height()),
        Qt::AlignCenter, m_title);
}
