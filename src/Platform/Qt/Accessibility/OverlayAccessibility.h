#pragma once

#include "Platform/SurfaceAccessibility.h"

#include <QRect>
#include <map>
#include <memory>

/// Puts every surface that has a description into the accessibility tree, as a child of the
/// application: a group with its label, identifier, selection and rectangle. A surface that is not
/// on screen stays in the tree, as one that is not showing. An application object must exist.
class OverlayAccessibility final : public SurfaceAccessibility {
public:
    OverlayAccessibility();
    ~OverlayAccessibility() override;

    void describe(const OverlaySurface& surface, const AccessibleDescription& description) override;
    void place(const OverlaySurface& surface, const QRect& rect, bool isShown) override;
    void forget(const OverlaySurface& surface) override;

private:
    class Element;
    class Node;
    struct Entry {
        QRect rect;
        bool isShown = false;
        // Made with the first description: a surface without one is decoration.
        std::unique_ptr<Element> element;
    };

    std::map<const OverlaySurface*, Entry> m_entries;
};
