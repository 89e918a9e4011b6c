#include "Platform/Qt/Accessibility/OverlayAccessibility.h"

#include "Platform/AccessibleIdentifier.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QGuiApplication>
#include <QWindow>
#include <utility>

namespace {

void tell(QAccessibleInterface& node, QAccessible::Event type) {
    QAccessibleEvent event(&node, type);
    QAccessible::updateAccessibility(&event);
}

}  // namespace

/// What the tree shows of a surface. Qt takes the children of the application from its windows, so
/// it is one: never shown, and thus unknown to the server.
class OverlayAccessibility::Element final : public QWindow {
public:
    Element(const Entry& place, AccessibleDescription description);
    ~Element() override;

    QAccessibleInterface* accessibleRoot() const override;

    const AccessibleDescription& description() const { return m_description; }
    const QRect& screenRect() const { return m_rect; }
    bool isShown() const { return m_isShown; }

    void setDescription(const AccessibleDescription& description);
    void setPlace(const QRect& rect, bool isShown);

private:
    AccessibleDescription m_description;
    QRect m_rect;
    bool m_isShown;
    // Owned by Qt, which lets it go with this object.
    QAccessibleInterface* m_node;
};

class OverlayAccessibility::Node final : public QAccessibleObject {
public:
    explicit Node(Element& element) : QAccessibleObject(&element), m_element(element) {}

    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(qApp);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? m_element.description().label : QString();
    }
    QRect rect() const override { return m_element.screenRect(); }
    QAccessible::Role role() const override { return QAccessible::Grouping; }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.selectable = true;
        state.selected = m_element.description().isSelected;
        state.invisible = !m_element.isShown();
        return state;
    }

private:
    const Element& m_element;
};

OverlayAccessibility::Element::Element(const Entry& place, AccessibleDescription description)
    : m_description(std::move(description)),
      m_rect(place.rect),
      m_isShown(place.isShown),
      m_node(new Node(*this)) {
    setAccessibleIdentifier(*this, m_description.identifier);
    QAccessible::registerAccessibleInterface(m_node);
    tell(*m_node, QAccessible::ObjectCreated);
}

OverlayAccessibility::Element::~Element() {
    tell(*m_node, QAccessible::ObjectDestroyed);
}

QAccessibleInterface* OverlayAccessibility::Element::accessibleRoot() const {
    return m_node;
}

void OverlayAccessibility::Element::setDescription(const AccessibleDescription& description) {
    const AccessibleDescription previous = std::exchange(m_description, description);
    if (previous.identifier != description.identifier)
        setAccessibleIdentifier(*this, description.identifier);
    if (previous.label != description.label) tell(*m_node, QAccessible::NameChanged);
    if (previous.isSelected != description.isSelected)
        tell(*m_node,
             description.isSelected ? QAccessible::SelectionAdd : QAccessible::SelectionRemove);
}

void OverlayAccessibility::Element::setPlace(const QRect& rect, bool isShown) {
    const bool isMoved = std::exchange(m_rect, rect) != rect;
    const bool isShownNow = std::exchange(m_isShown, isShown) != isShown;
    if (isMoved) tell(*m_node, QAccessible::LocationChanged);
    if (isShownNow) tell(*m_node, isShown ? QAccessible::ObjectShow : QAccessible::ObjectHide);
}

OverlayAccessibility::OverlayAccessibility() = default;
OverlayAccessibility::~OverlayAccessibility() = default;

void OverlayAccessibility::describe(const OverlaySurface& surface,
                                    const AccessibleDescription& description) {
    Entry& entry = m_entries[&surface];
    if (entry.element)
        entry.element->setDescription(description);
    else
        entry.element = std::make_unique<Element>(entry, description);
}

void OverlayAccessibility::place(const OverlaySurface& surface, const QRect& rect, bool isShown) {
    Entry& entry = m_entries[&surface];
    entry.rect = rect;
    entry.isShown = isShown;
    if (entry.element) entry.element->setPlace(rect, isShown);
}

void OverlayAccessibility::forget(const OverlaySurface& surface) {
    m_entries.erase(&surface);
}
