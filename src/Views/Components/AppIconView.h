#pragma once

#include <QWidget>

/// The program's icon in a square of that side, in points.
class AppIconView final : public QWidget {
public:
    explicit AppIconView(int side);

protected:
    void paintEvent(QPaintEvent* event) override;
};
