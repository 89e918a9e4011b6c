#pragma once

#include <QIcon>
#include <QPoint>
#include <QWidget>

class QPainter;

/// The program's icon in the sizes that task bars and title bars ask for.
QIcon applicationIcon();

/// Paints the program's icon into a square of that side, in the painter's points.
void paintApplicationIcon(QPainter& painter, QPoint topLeft, int side);

/// The program's icon in a square of that side, in points.
class AppIconView final : public QWidget {
public:
    explicit AppIconView(int side);

protected:
    void paintEvent(QPaintEvent* event) override;
};
