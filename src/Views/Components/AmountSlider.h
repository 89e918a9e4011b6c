#pragma once

#include "Views/Components/AccessibleElement.h"

#include <QColor>
#include <QWidget>
#include <functional>
#include <utility>

/// A slider for any value between two bounds, without steps. The arrow keys move it by a
/// hundredth, Page Up and Page Down by a tenth, Home and End to its ends.
class AmountSlider final : public QWidget, public AccessibleElement {
public:
    AmountSlider(double minimum, double maximum, const QColor& tint);

    /// What the user makes of it; not called by `showAmount`.
    void onChange(std::function<void(double)> callback) { m_onChange = std::move(callback); }
    /// A value beyond the bounds is shown at the bound.
    void showAmount(double amount);

    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Slider; }
    std::optional<AccessibleAmount> accessibleAmount() const override;
    void setAmountFromAccessibility(double value) override { choose(value); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void choose(double amount);
    void chooseAt(double x);
    double knobX() const;

    double m_minimum;
    double m_maximum;
    double m_amount;
    /// As given, which may be beyond the bounds.
    double m_given;
    QColor m_tint;
    std::function<void(double)> m_onChange;
};
