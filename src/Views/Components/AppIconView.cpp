#include "Views/Components/AppIconView.h"

#include <QPainter>
#include <QSvgRenderer>

AppIconView::AppIconView(int side) {
    setFixedSize(side, side);
}

void AppIconView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QSvgRenderer drawing(QStringLiteral(":/app/app.veyla.Veyla.svg"));
    drawing.setAspectRatioMode(Qt::KeepAspectRatio);
    drawing.render(&painter, rect());
}
