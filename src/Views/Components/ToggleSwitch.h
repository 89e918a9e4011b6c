#pragma once

#include <QCheckBox>
#include <QColor>

/// A switch with its title: a check box that looks like one.
class ToggleSwitch final : public QCheckBox {
public:
    ToggleSwitch(const QString& title, const QColor& tint);

    /// Shows a state without reporting it as the user's choice.
    void showIsOn(bool isOn);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& position) const override;
    void changeEvent(QEvent* event) override;

private:
    /// Not valid until it is needed; layouts ask for it many times.
    mutable QSize m_sizeHint;
    QColor m_tint;
};
