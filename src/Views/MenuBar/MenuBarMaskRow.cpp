#include "Views/MenuBar/MenuBarMaskRow.h"

#include "Drawing/SymbolPainter.h"
#include "Drawing/SystemColors.h"
#include "Platform/AccessibleIdentifier.h"
#include "Views/Design/TextLine.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/MenuBar/PanelButton.h"

#include <QPainter>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int verticalPadding = 6;
constexpr int dotDiameter = 8;

Symbol visibilitySymbol(bool isVisible) {
    return {isVisible ? u"eye"_s : u"eye.slash"_s, 10, SymbolWeight::regular,
            isVisible ? VeylaTheme::accentBlue() : VeylaTheme::textMuted()};
}

int rowHeight(const QFontMetrics& metrics) {
    return std::max(metrics.height(), static_cast<int>(std::ceil(visibilitySymbol(true).side()))) +
           2 * verticalPadding;
}

}  // namespace

/// The paddings of the row are part of the buttons, so that they are easy to hit.
class MenuBarMaskRow::NameButton final : public PanelButton {
public:
    NameButton() : PanelButton({}) { setFont(systemFont({11, QFont::Medium})); }

    void show(const QString& name, const QColor& color) {
        m_name = name;
        m_color = color;
        update();
    }
    QSize sizeHint() const override {
        return {PanelRow::horizontalPadding + dotDiameter + PanelRow::gap,
                rowHeight(fontMetrics())};
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        beginPaint(painter);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_color);
        painter.drawEllipse(QRectF(PanelRow::horizontalPadding, (height() - dotDiameter) / 2.0,
                                   dotDiameter, dotDiameter));
        const int left = PanelRow::horizontalPadding + dotDiameter + PanelRow::gap;
        paintLine(painter, m_line, rect().adjusted(left, 0, 0, 0), m_name, font(),
                  VeylaTheme::textPrimary());
        paintFocus(painter);
    }

private:
    QString m_name;
    QColor m_color;
    TextLine m_line;
};

class MenuBarMaskRow::VisibilityButton final : public PanelButton {
public:
    VisibilityButton() : PanelButton({}) {
        setFont(systemFont({11, QFont::Medium}));
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    void show(bool isVisible) {
        m_isVisible = isVisible;
        update();
    }
    QSize sizeHint() const override {
        const int side = static_cast<int>(std::ceil(visibilitySymbol(true).side()));
        return {PanelRow::gap + side + PanelRow::horizontalPadding, rowHeight(fontMetrics())};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        beginPaint(painter);
        const Symbol symbol = visibilitySymbol(m_isVisible);
        SymbolPainter::paint(
            painter, symbol,
            {width() - PanelRow::horizontalPadding - symbol.side() / 2, height() / 2.0});
        paintFocus(painter);
    }

private:
    bool m_isVisible = true;
};

MenuBarMaskRow::MenuBarMaskRow(const Actions& actions)
    : m_name(new NameButton), m_visibility(new VisibilityButton) {
    m_name->setParent(this);
    m_visibility->setParent(this);
    connect(m_name, &QPushButton::clicked, this, [this, select = actions.onSelect] {
        if (m_mask) select(m_mask->id);
    });
    connect(m_visibility, &QPushButton::clicked, this, [this, set = actions.onSetVisibility] {
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
    m_name->show(name, dotColor(mask));
    m_visibility->show(mask.isVisible);
    update();
}

QSize MenuBarMaskRow::sizeHint() const {
    return {0, m_name->sizeHint().height()};
}

void MenuBarMaskRow::resizeEvent(QResizeEvent* /*event*/) {
    const int nameWidth = width() - m_visibility->sizeHint().width();
    m_name->setGeometry(0, 0, nameWidth, height());
    m_visibility->setGeometry(nameWidth, 0, width() - nameWidth, height());
}

PanelButton* MenuBarMaskRow::nameButton() const {
    return m_name;
}

PanelButton* MenuBarMaskRow::visibilityButton() const {
    return m_visibility;
}

void MenuBarMaskRow::paintEvent(QPaintEvent* /*event*/) {
    if (!m_isSelected) return;
    QPainter painter(this);
    paintPanel(painter, rect(), PanelRow::cornerRadius,
               VeylaTheme::withOpacity(VeylaTheme::accentBlue(), 0.12));
}
