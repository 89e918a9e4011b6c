#pragma once

#include <QCheckBox>

/// A box with a tick and its title.
class CheckBox final : public QCheckBox {
public:
    explicit CheckBox(const QString& title);

    /// Shows a state without reporting it as the user's choice.
    void showIsOn(bool isOn);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& position) const override;
};
