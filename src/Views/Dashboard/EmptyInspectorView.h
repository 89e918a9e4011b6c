#pragma once

#include "App/AppState.h"

#include <QWidget>

/// What the pane shows while no mask is selected.
class EmptyInspectorView final : public QWidget {
public:
    /// The state must outlive the view.
    explicit EmptyInspectorView(AppState& state);
};
