#pragma once

#include <QVariantAnimation>
#include <QWidget>

/// A small turning ring that says that something is under way. Turns only while it is on screen.
class Spinner final : public QWidget {
public:
    Spinner();

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QVariantAnimation m_turn;
};
