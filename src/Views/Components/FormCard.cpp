#include "Views/Components/FormCard.h"

#include "Views/Components/SymbolView.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaCard.h"

#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr int cardPadding = 16;
constexpr int labelWidth = 110;

}  // namespace

FormCard::FormCard(const QString& title, const QString& symbolName)
    : m_rows(new QVBoxLayout(this)) {
    m_rows->setContentsMargins(cardPadding, cardPadding, cardPadding, cardPadding);
    m_rows->setSpacing(12);
    const Symbol symbol{symbolName, 12, SymbolWeight::semibold, VeylaTheme::accentIndigo()};
    m_rows->addWidget(
        row(8, {new SymbolView(symbol),
                new TextLabel(title, {13, QFont::DemiBold}, VeylaTheme::textPrimary()),
                LayoutItem::space()}));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QWidget* FormCard::addRow(const QString& label, QWidget* controls, const QWidget* firstLine) {
    auto* const text = new TextLabel(label, {11, QFont::Medium}, VeylaTheme::textSecondary());
    text->setFixedWidth(qRound(labelWidth * textScale()));
    if (firstLine) text->setFixedHeight(firstLine->sizeHint().height());
    const Qt::Alignment place = firstLine ? Qt::AlignTop : Qt::Alignment();
    auto* const line = row(12, {{text, 0, place}, {controls, 1}});
    m_rows->addWidget(line);
    return line;
}

void FormCard::addWide(QWidget* view) {
    m_rows->addWidget(view);
}

void FormCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintPanel(painter, rect(), VeylaCardModifier::cornerRadius, VeylaTheme::panel(),
               VeylaTheme::border());
}

TextLabel* sectionHeader(const QString& title, const QColor& color) {
    const TextStyle style{.size = 10, .weight = QFont::Bold, .tracking = 0.6, .isUpperCase = true};
    return new TextLabel(title, style, color);
}
