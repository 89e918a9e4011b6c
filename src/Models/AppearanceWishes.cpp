#include "Models/AppearanceWishes.h"

using namespace Qt::Literals::StringLiterals;

// "HighContrast" and "HighContrastInverse" of GNOME, "ContrastHigh" of MATE.
bool isContrastTheme(const QString& name) {
    return name.contains("HighContrast"_L1) || name.contains("ContrastHigh"_L1);
}
