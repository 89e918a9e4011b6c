#pragma once

#include "Views/Design/Typography.h"

#include <QLineEdit>

/// A field for one line of text. Without a frame until the keyboard is in it, or with a rounded
/// border.
class PlainTextField final : public QLineEdit {
public:
    enum class Border { none, rounded };

    PlainTextField(const QString& placeholder, const TextStyle& style,
                   Border border = Border::none);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Border m_border;
};
