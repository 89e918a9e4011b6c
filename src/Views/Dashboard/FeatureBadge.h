#pragma once

#include "Views/Components/AccessibleElement.h"

#include <QColor>
#include <QString>
#include <QWidget>

/// A small counter tile: a value above its title.
class FeatureBadge final : public QWidget, public AccessibleElement {
public:
    explicit FeatureBadge(const QString& title);

    /// Without a valid colour the value is shown as primary text.
    void showValue(const QString& value, const QColor& valueColor = QColor());
    const QString& value() const { return m_value; }

    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_title;
    QString m_value;
    QColor m_valueColor;
};
