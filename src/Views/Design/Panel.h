#pragma once

#include <QColor>
#include <QWidget>

/// How a rounded ground looks; the radius is in points.
struct PanelLook {
    double cornerRadius = 10;
    QColor fill{};
    QColor border{};
};

/// A rounded ground for other views.
class Panel final : public QWidget {
public:
    explicit Panel(const PanelLook& look) : m_look(look) {}

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PanelLook m_look;
};
