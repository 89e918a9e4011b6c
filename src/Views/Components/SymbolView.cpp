#include "Views/Components/SymbolView.h"

#include <QPainter>
#include <cmath>

SymbolView::SymbolView(const Symbol& symbol, int boxWidth)
    : m_symbol(symbol), m_boxWidth(boxWidth) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolView::setSymbol(const Symbol& symbol) {
    if (symbol == m_symbol) return;
    m_symbol = symbol;
    updateGeometry();
    update();
}

QSize SymbolView::sizeHint() const {
    const int side = static_cast<int>(std::ceil(m_symbol.side()));
    return {std::max(side, m_boxWidth), side};
}

void SymbolView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    SymbolPainter::paint(painter, m_symbol, QRectF(rect()).center());
}
