#pragma once

#include <QString>
#include <optional>

/// Whether the desktop starts the program when the user logs in.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// As the desktop has it now; others may change it at any time.
    virtual bool isEnabled() const = 0;
    /// Nothing when it is done; otherwise a sentence for the user that says why not, and it stays
    /// as it was.
    virtual std::optional<QString> setEnabled(bool isEnabled) = 0;
};
