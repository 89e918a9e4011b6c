#pragma once

#include "Views/Components/Sheet.h"

#include <QString>
#include <functional>

/// A question about something that cannot be undone.
struct Confirmation {
    QString title;
    QString message;
    /// What the button is called that does it.
    QString destructiveTitle;
    std::function<void()> onConfirm;
    std::function<void()> onCancel;
};

/// The sheet that asks it. The keyboard starts on "Cancel".
SheetContent confirmationSheet(const Confirmation& confirmation);
