#pragma once

#include "Drawing/SymbolPainter.h"

#include <QWidget>

/// A tinted icon beside text. Tells assistive technology nothing: what it means is in the text.
class SymbolView final : public QWidget {
public:
    /// A box wider than the symbol keeps columns of them aligned; 0 means as wide as the symbol.
    explicit SymbolView(const Symbol& symbol, int boxWidth = 0);

    void setSymbol(const Symbol& symbol);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Symbol m_symbol;
    int m_boxWidth;
};
