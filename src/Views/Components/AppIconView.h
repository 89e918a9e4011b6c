#pragma once

#include <QIcon>
#include <QWidget>

/// The program's icon in the sizes that task bars and title bars ask for.
QIcon applicationIcon();

/// The program's icon in a square of that side, in points.
class AppIconView final : public QWidget {
public:
    explicit AppIconView(int side);

protected:
    void paintEvent(QPaintEvent* event) override;
};
