#pragma once

#include "Models/OnboardingStep.h"

#include <QPointer>
#include <QWidget>
#include <map>

/// Which views the walkthrough can point at. A view takes part by being marked; when two are
/// marked alike, the later one counts.
class CoachmarkAnchors {
public:
    void mark(QWidget* view, CoachmarkAnchor anchor) { m_views[anchor] = view; }

    /// The view on screen under that anchor; null when none is, or when it is not shown.
    QWidget* view(CoachmarkAnchor anchor) const {
        const auto found = m_views.find(anchor);
        if (found == m_views.end() || !found->second || !found->second->isVisible()) return nullptr;
        return found->second;
    }

private:
    std::map<CoachmarkAnchor, QPointer<QWidget>> m_views;
};
