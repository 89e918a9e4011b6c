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
    /// Keys that edit the text are the field's, whatever they mean in the window around it.
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Border m_border;
};
