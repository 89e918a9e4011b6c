#pragma once

#include <QLatin1StringView>

/// What the desktop knows Veyla by: the name of its desktop entry, icon, bus connection and files.
inline constexpr QLatin1StringView applicationIdentifier{"app.veyla.Veyla"};
