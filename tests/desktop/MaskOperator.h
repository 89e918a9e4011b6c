#pragma once

/// The masks of the workspace on the display, in a program without windows that does whatever the
/// application state can do. It takes the commands of `veyla` on the session bus and, beside them,
/// operations: "select", "opacity", "style", "color", "visible", "nudge", "resize", "duplicate",
/// "delete" and "group-visible", each with the index of a mask (or group) and a value. Returns the
/// exit status.
int runMaskOperator(int argc, char** argv);
