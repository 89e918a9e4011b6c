#pragma once

#include "Platform/LoginItem.h"

/// A login item in memory. Its owner may change it, and make changes fail.
class HeadlessLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return isOn; }
    std::optional<QString> setEnabled(bool isEnabled) override {
        if (!failure) isOn = isEnabled;
        return failure;
    }

    bool isOn = false;
    /// What every change fails with, if anything.
    std::optional<QString> failure;
};
