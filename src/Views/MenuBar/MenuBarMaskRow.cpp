#include "Views/MenuBar/MenuBarMaskRow.h"

#include "Drawing/SymbolPainter.h"
#include "Drawing/SystemColors.h"
#include "Platform/AccessibleIdentifier.h"
#include "Views/Design/TextLine.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/MenuBar/ColorDot.h"
#include "Views/MenuBar/PanelButton.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int verticalPadding = 6;
constexpr int dotDiameter = 8;

Symbol visibilitySymbol(bool isVisible) {
    return {isVisible ? u"eye"_s : u"eye.slash"_s, 10, SymbolWeight::regular,
            isVisible ? VeylaTheme::accentBlue() : VeylaTheme::textMuted()};
}

int rowHeight(const QFont& font) {
    const int symbolHeight = static_cast<int>(std::ceil(visibilitySymbol(true).side()));
    return std::max(QFontMetrics(font).height(), symbolHeight) + 2 * verticalPadding;
}

void paintSelection(QPainter& painter, const QRect& row) {
    paintPanel(painter, row, PanelRow::cornerRadius,
               VeylaTheme::withOpacity(VeylaTheme::accentBlue(), 0.12));
}

// How far the ground of a selected row reaches into the other button: its corners there are not
// seen.
constexpr int selectionOverlap = 32;

}  // namespace

/// The paddings of the row are part of the buttons, so that they are easy to hit.
class MenuBarMaskRow::NameButton final : public PanelButton {
public:
    explicit NameButton(QWidget* parent)
        : PanelButton({}, parent), m_font(systemFont({11, QFont::Medium})) {}

    void show(const QString& name, const QColor& color, bool isSelected) {
        m_name = name;
        m_color = color;
        m_isSelected = isSelected;
        update();
    }
    QSize sizeHint() const override {
        return {PanelRow::horizontalPadding + dotDiameter + PanelRow::gap, rowHeight(m_font)};
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        if (m_isSelected) paintSelection(painter, rect().adjusted(0, 0, selectionOverlap, 0));
        beginPaint(painter);
        paintDot(painter,
                 QRectF(PanelRow::horizontalPadding, (height() - dotDiameter) / 2.0, dotDiameter,
                        dotDiameter),
                 m_color);
        const int left = PanelRow::horizontalPadding + dotDiameter + PanelRow::gap;
        paintLine(painter, m_line, rect().adjusted(left, 0, 0, 0), m_name, m_font,
                  VeylaTheme::textPrimary());
        paintFocus(painter);
    }

private:
    QString m_name;
    QColor m_color;
    bool m_isSelected = false;
    QFont m_font;
    TextLine m_line;
};

class MenuBarMaskRow::VisibilityButton final : public PanelButton {
public:
    explicit VisibilityButton(QWidget* parent) : PanelButton({}, parent) {}

    void show(bool isVisible, bool isSelected) {
        m_isVisible = isVisible;
        m_isSelected = isSelected;
        update();
    }
    QSize sizeHint() const override {
        const int side = static_cast<int>(std::ceil(visibilitySymbol(true).side()));
        return {PanelRow::gap + side + PanelRow::horizontalPadding, side + 2 * verticalPadding};
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        if (m_isSelected) paintSelection(painter, rect().adjusted(-selectionOverlap, 0, 0, 0));
        beginPaint(painter);
        const Symbol symbol = visibilitySymbol(m_isVisible);
        SymbolPainter::paint(
            painter, symbol,
            {width() - PanelRow::horizontalPadding - symbol.side() / 2, height() / 2.0});
        paintFocus(painter);
    }

private:
    bool m_isVisible = true;
    bool m_isSelected = false;
};

MenuBarMaskRow::MenuBarMaskRow(const Actions& actions, QWidget* parent)
    : m_name(new NameButton(parent)), m_visibility(new VisibilityButton(parent)) {
    QObject::connect(m_name, &QPushButton::clicked, m_name, [this, select = actions.onSelect] {
        if (m_mask) select(m_mask->id);
    });
    QObject::connect(m_visibility, &QPushButton::clicked, m_visibility,
                     [this, set = actions.onSetVisibility] {
                         if (m_mask) set(m_mask->id, !m_mask->isVisible);
                     });
}

QColor MenuBarMaskRow::dotColor(const ScreenMask& mask) {
    return paintColor(Color::fromHex(mask.colorHex).value_or(SystemColors::white));
}

void MenuBarMaskRow::show(const ScreenMask& mask, bool isSelected) {
    if (m_mask == mask && m_isSelected == isSelected) return;
    m_mask = mask;
    m_isSelected = isSelected;
    const QString name = onOneLine(mask.name);
    const QString id = uuidText(mask.id);
    setAccessibleIdentifier(*m_name, u"panel-mask-"_s + id);
    setAccessibleIdentifier(*m_visibility, u"panel-mask-visibility-"_s + id);
    m_name->setAccessibleName(isSelected ? name + u", selected"_s : name);
    const QString change = mask.isVisible ? u"Hide "_s : u"Show "_s;
    m_visibility->setAccessibleName(change + name);
    m_visibility->setToolTip(change.trimmed());
    m_name->show(name, dotColor(mask), isSelected);
    m_visibility->show(mask.isVisible, isSelected);
}

PanelButton* MenuBarMaskRow::nameButton() const {
    return m_name;
}

PanelButton* MenuBarMaskRow::visibilityButton() const {
    return m_visibility;
}
