#include "Views/MenuBar/MenuBarPresetRow.h"

#include "Drawing/SymbolPainter.h"
#include "Platform/AccessibleIdentifier.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaTheme.h"

#include <QFontMetrics>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int verticalPadding = 5;

}  // namespace

MenuBarPresetRow::MenuBarPresetRow(QWidget* parent)
    : PanelButton({}, parent),
      m_nameFont(systemFont({11, QFont::Medium})),
      m_countFont(systemFont({9, QFont::Medium})) {}

QString MenuBarPresetRow::countText(qsizetype maskCount) {
    return u"%1 mask%2"_s.arg(maskCount).arg(maskCount == 1 ? QString() : u"s"_s);
}

void MenuBarPresetRow::show(const MaskPreset& preset) {
    setAccessibleIdentifier(*this, u"panel-preset-"_s + uuidText(preset.id));
    const QString count = countText(preset.masks.size());
    if (preset.name == m_name && count == m_count) return;
    m_name = preset.name;
    m_count = count;
    setAccessibleName(u"%1, %2"_s.arg(onOneLine(m_name), m_count));
    update();
}

QSize MenuBarPresetRow::sizeHint() const {
    return {2 * PanelRow::horizontalPadding + PanelRow::symbolBox + PanelRow::gap,
            QFontMetrics(m_nameFont).height() + QFontMetrics(m_countFont).height() +
                2 * verticalPadding};
}

void MenuBarPresetRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    beginPaint(painter);
    SymbolPainter::paint(
        painter, {u"rectangle.stack"_s, 10, SymbolWeight::regular, VeylaTheme::accentIndigo()},
        {PanelRow::horizontalPadding + PanelRow::symbolBox / 2.0, height() / 2.0});
    const int left = PanelRow::horizontalPadding + PanelRow::symbolBox + PanelRow::gap;
    QRect line(left, verticalPadding, width() - left - PanelRow::horizontalPadding,
               QFontMetrics(m_nameFont).height());
    paintLine(painter, m_nameLine, line, m_name, m_nameFont, VeylaTheme::textPrimary());
    line.moveTop(line.bottom() + 1);
    line.setHeight(QFontMetrics(m_countFont).height());
    paintLine(painter, m_countLine, line, m_count, m_countFont, VeylaTheme::textMuted());
    paintFocus(painter);
}
