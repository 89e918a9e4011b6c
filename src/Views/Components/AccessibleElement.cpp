#include "Views/Components/AccessibleElement.h"

#include <QAccessibleWidget>
#include <QWidget>
#include <algorithm>

namespace {

class ElementInterface final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    ElementInterface(QWidget* widget, AccessibleElement& element)
        : QAccessibleWidget(widget, element.accessibleRole()), m_element(element) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        m_element.describeState(state);
        return state;
    }

    int childCount() const override {
        if (m_element.hidesChildren()) return 0;
        return m_element.onlyChild() ? 1 : QAccessibleWidget::childCount();
    }

    QAccessibleInterface* child(int index) const override {
        QWidget* const only = m_element.onlyChild();
        if (!only) return QAccessibleWidget::child(index);
        return index == 0 ? QAccessible::queryAccessibleInterface(only) : nullptr;
    }

    int indexOfChild(const QAccessibleInterface* wanted) const override {
        const QWidget* const only = m_element.onlyChild();
        if (!only) return QAccessibleWidget::indexOfChild(wanted);
        return wanted && wanted->object() == only ? 0 : -1;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface && m_element.accessibleAmount())
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (m_element.canBePressed()) names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& name) override {
        if (name == pressAction() && m_element.canBePressed() && widget()->isEnabled())
            m_element.pressFromAccessibility();
        else
            QAccessibleWidget::doAction(name);
    }

    QVariant currentValue() const override { return amount().current; }
    QVariant minimumValue() const override { return amount().minimum; }
    QVariant maximumValue() const override { return amount().maximum; }
    QVariant minimumStepSize() const override { return amount().step; }
    void setCurrentValue(const QVariant& value) override {
        m_element.setAmountFromAccessibility(
            std::clamp(value.toDouble(), amount().minimum, amount().maximum));
    }

private:
    AccessibleAmount amount() const {
        return m_element.accessibleAmount().value_or(AccessibleAmount{});
    }

    AccessibleElement& m_element;
};

QAccessibleInterface* makeElementInterface(const QString& /*className*/, QObject* object) {
    auto* const widget = qobject_cast<QWidget*>(object);
    auto* const element = dynamic_cast<AccessibleElement*>(widget);
    return element ? new ElementInterface(widget, *element) : nullptr;
}

}  // namespace

void installAccessibleElements() {
    QAccessible::installFactory(makeElementInterface);
}
