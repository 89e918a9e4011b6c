#pragma once

#include "Views/Design/Typography.h"

#include <QLineEdit>

/// A field for one line of text, without a frame until the keyboard is in it.
class PlainTextField final : public QLineEdit {
public:
    PlainTextField(const QString& placeholder, const TextStyle& style);

protected:
    void paintEvent(QPaintEvent* event) override;
};
