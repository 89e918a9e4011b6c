#include "Views/Design/VeylaCard.h"

#include "Drawing/ContinuousRoundedRect.h"
#include "Views/Design/VeylaTheme.h"

#include <QPainter>
#include <QVBoxLayout>

namespace {

class CardBorder final : public QWidget {
public:
    CardBorder(const VeylaCardModifier& look, QWidget* card) : QWidget(card), m_look(look) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        m_look.paintBorder(painter, rect());
    }

private:
    VeylaCardModifier m_look;
};

class CardFrame final : public QWidget {
public:
    CardFrame(const VeylaCardModifier& look, QWidget* content)
        : m_look(look), m_border(new CardBorder(look, this)) {
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(content);
        setSizePolicy(content->sizePolicy());
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        m_look.paintBackground(painter, rect());
    }

    void resizeEvent(QResizeEvent*) override {
        m_border->setGeometry(rect());
        m_border->raise();
    }

private:
    VeylaCardModifier m_look;
    CardBorder* m_border;
};

}  // namespace

QColor colorOver(const QColor& above, const QColor& below) {
    const float part = above.alphaF();
    const auto mix = [part](float upper, float lower) { return upper * part + lower * (1 - part); };
    return QColor::fromRgbF(mix(above.redF(), below.redF()), mix(above.greenF(), below.greenF()),
                            mix(above.blueF(), below.blueF()));
}

void paintPanel(QPainter& painter, const QRectF& rect, double radius, const QBrush& fill,
                const QColor& border, double borderWidth) {
    painter.setRenderHint(QPainter::Antialiasing);
    const ContinuousRoundedRect shape{rect, radius};
    QPainterPath outline = shape.path();
    if (!border.isValid()) return painter.fillPath(outline, fill);
    const QPainterPath inside = shape.insetBy(borderWidth).path();
    // Strokes and translucent fills of large shapes take a multiple of the time of opaque fills.
    if (fill.style() == Qt::SolidPattern && fill.isOpaque()) {
        painter.fillPath(outline, colorOver(border, fill.color()));
        painter.fillPath(inside, fill);
        return;
    }
    if (fill.style() != Qt::NoBrush) painter.fillPath(outline, fill);
    outline.addPath(inside);
    outline.setFillRule(Qt::OddEvenFill);
    painter.fillPath(outline, border);
}

void VeylaCardModifier::paintBackground(QPainter& painter, const QRectF& rect) const {
    paintPanel(painter, rect, cornerRadius,
               elevated ? VeylaTheme::panelElevated() : VeylaTheme::panel());
}

void VeylaCardModifier::paintBorder(QPainter& painter, const QRectF& rect) const {
    paintPanel(painter, rect, cornerRadius, Qt::NoBrush, VeylaTheme::border());
}

QWidget* veylaCard(QWidget* content, bool elevated) {
    return new CardFrame({elevated}, content);
}
