#pragma once

#include "Reactive/Scheduler.h"
#include "Views/Settings/KeyCaptureNSView.h"

/// What a view that captures keys is made from and brought up to date with.
struct KeyCaptureView {
    KeyCaptureNSView::OnKeyCaptured onKeyCaptured;

    /// A view inside the parent that owns it. It asks for the keyboard in the next turn, when the
    /// parent has had time to come on screen.
    KeyCaptureNSView* makeView(QWidget* parent, Scheduler& scheduler) const;
    /// Replaces the callback and nothing else.
    void updateView(KeyCaptureNSView& view) const { view.onKeyCaptured = onKeyCaptured; }
};
