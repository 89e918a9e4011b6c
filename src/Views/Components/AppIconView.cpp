#include "Views/Components/AppIconView.h"

#include <QPainter>
#include <QSvgRenderer>

namespace {

void paintIcon(QPainter& painter, const QRectF& rect) {
    QSvgRenderer drawing(QStringLiteral(":/app/app.veyla.Veyla.svg"));
    drawing.setAspectRatioMode(Qt::KeepAspectRatio);
    drawing.render(&painter, rect);
}

}  // namespace

QIcon applicationIcon() {
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paintIcon(painter, picture.rect());
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

AppIconView::AppIconView(int side) {
    setFixedSize(side, side);
}

void AppIconView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintIcon(painter, rect());
}
