#pragma once

#include "Views/Components/AccessibleElement.h"

#include <QString>
#include <QWidget>

/// A sentence in red about what did not work. Spoken when it comes on screen; hidden at first.
class SpokenNote final : public QWidget, public AccessibleElement {
public:
    enum class Kind {
        /// On one line.
        line,
        /// A centered paragraph of that width in points, to be copied with the pointer or by keys.
        copied
    };

    explicit SpokenNote(const QString& text, Kind kind = Kind::line, int width = 0);

    /// Shows it; where it is on screen already, says it once more.
    void say();

    QAccessible::Role accessibleRole() const override { return QAccessible::AlertMessage; }
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool hidesChildren() const override { return m_kind == Kind::line; }

private:
    Kind m_kind;
};
