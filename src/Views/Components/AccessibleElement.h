#pragma once

#include <QAccessible>
#include <optional>

class QWidget;

/// A value between two bounds, as assistive technology reads and sets it.
struct AccessibleAmount {
    double current = 0;
    double minimum = 0;
    double maximum = 1;
    double step = 0.01;
};

/// What a widget that paints itself tells assistive technology beside its name. To be inherited
/// next to QWidget; the name and the identifier are the widget's own.
class AccessibleElement {
public:
    virtual ~AccessibleElement() = default;

    virtual QAccessible::Role accessibleRole() const = 0;
    /// Added to what Qt knows of every widget.
    virtual void describeState(QAccessible::State& /*state*/) const {}
    /// Whether the element is one piece, so that the widgets inside it are not told.
    virtual bool hidesChildren() const { return false; }
    /// The one widget inside it that is told, while it keeps the user from all others; else null.
    virtual QWidget* onlyChild() const { return nullptr; }

    /// What pressing does, for an element that can be pressed.
    virtual bool canBePressed() const { return false; }
    virtual void pressFromAccessibility() {}

    virtual std::optional<AccessibleAmount> accessibleAmount() const { return std::nullopt; }
    virtual void setAmountFromAccessibility(double /*value*/) {}
};

/// Makes the elements known to Qt. To be called once, with an application object.
void installAccessibleElements();
