#include "Drawing/SymbolPainter.h"
#include "Rendering.h"

#include <QDir>
#include <QMap>
#include <QRegularExpression>
#include <QSvgRenderer>

using namespace Qt::Literals::StringLiterals;

namespace {

Symbol arrow(double size, SymbolWeight weight = SymbolWeight::regular) {
    return {u"arrow.up.left.and.arrow.down.right"_s, size, weight, QColor(200, 100, 50, 128)};
}

/// Every symbol that the masks, the windows and the tray show.
const QStringList usedSymbols =
    u"MenuBarIcon arrow.triangle.2.circlepath arrow.up.left.and.arrow.down.right "
    "checkmark.circle.fill chevron.down chevron.right doc.on.doc eye eye.slash figure.walk "
    "folder.fill gearshape line.3.horizontal.decrease lock lock.fill lock.open macwindow "
    "pencil plus plus.circle rectangle.stack shield.slash slider.horizontal.3 sparkles "
    "square.and.arrow.down trash wifi.slash"_s.split(u' ');

int coveredAlpha(const QImage& image) {
    int sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y));
    return sum;
}

int difference(const QImage& first, const QImage& second) {
    int sum = 0;
    for (int y = 0; y < first.height(); ++y)
        for (int x = 0; x < first.width(); ++x)
            sum += std::abs(qAlpha(first.pixel(x, y)) - qAlpha(second.pixel(x, y)));
    return sum;
}

TEST(SymbolPainter, TintsTheDrawingAtTheSizeOfTheScreen) {
    for (const double scale : testedScales) {
        const QImage image = SymbolPainter::image(arrow(16), scale);
        EXPECT_EQ(image.size(), QSize(qRound(20 * scale), qRound(20 * scale)));
        EXPECT_EQ(image.devicePixelRatio(), scale);
        const QPoint center = QRect(QPoint(0, 0), image.size()).center();
        EXPECT_TRUE(hasColor(image, center, {200 / 255.0, 100 / 255.0, 50 / 255.0, 128 / 255.0}));
        EXPECT_EQ(image.pixel(image.width() - 1, 0), 0U);
    }
    const auto weightOf = [](SymbolWeight weight) {
        return coveredAlpha(SymbolPainter::image(arrow(16, weight), 2));
    };
    EXPECT_LT(weightOf(SymbolWeight::light), weightOf(SymbolWeight::regular));
    EXPECT_LT(weightOf(SymbolWeight::regular), weightOf(SymbolWeight::semibold));
    EXPECT_LT(weightOf(SymbolWeight::semibold), weightOf(SymbolWeight::bold));

    Symbol blue = arrow(16);
    blue.color = Qt::blue;
    EXPECT_EQ(SymbolPainter::image(blue, 2).pixelColor(20, 20), QColor(Qt::blue));
}

TEST(SymbolPainter, CentresTheDrawingOnWholePixels) {
    for (const double scale : testedScales) {
        QImage image(80, 80, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        image.setDevicePixelRatio(scale);
        QPainter painter(&image);
        painter.translate(2, 3);
        SymbolPainter::paint(painter, arrow(16), QPointF(12, 14));
        painter.end();
        const QImage expected = SymbolPainter::image(arrow(16), scale);
        const QPoint corner(qRound(4 * scale), qRound(7 * scale));
        QImage found = image.copy(QRect(corner, expected.size()));
        found.setDevicePixelRatio(scale);
        EXPECT_EQ(found, expected);
        EXPECT_EQ(coveredAlpha(image), coveredAlpha(expected));
    }
}

TEST(SymbolPainter, DrawsNothingForAnUnknownName) {
    EXPECT_TRUE(SymbolPainter::hasSymbol(arrow(8).name));
    EXPECT_FALSE(SymbolPainter::hasSymbol(u"no.such.symbol"_s));
    const Symbol unknown{u"no.such.symbol"_s, 16, SymbolWeight::regular, Qt::red};
    EXPECT_TRUE(SymbolPainter::image(unknown, 2).isNull());
    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    SymbolPainter::paint(painter, unknown, QPointF(10, 10));
    painter.end();
    EXPECT_EQ(coveredAlpha(image), 0);
}

TEST(IconSet, IsDrawnOnOneGridInOneStyle) {
    const QRegularExpression strokes(u"stroke-width=\"([^\"]*)\""_s);
    const QStringList files = QDir(u":/icons"_s).entryList({u"*.svg"_s});
    ASSERT_FALSE(files.isEmpty());
    for (const QString& name : files) {
        SCOPED_TRACE(name.toStdString());
        QFile file(u":/icons/"_s + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString drawing = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(drawing.contains(u"viewBox=\"0 0 24 24\""_s));
        for (const QRegularExpressionMatch& match : strokes.globalMatch(drawing))
            EXPECT_EQ(match.captured(1).toStdString(), "2");

        const QImage image =
            SymbolPainter::image({name.chopped(4), 19.2 * 4, SymbolWeight::regular, Qt::black}, 1);
        ASSERT_EQ(image.size(), QSize(96, 96));
        QImage middle = image;
        QPainter painter(&middle);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillRect(QRect(7, 7, 82, 82), Qt::transparent);
        painter.end();
        EXPECT_GT(coveredAlpha(image), 0);
        EXPECT_EQ(coveredAlpha(middle), 0) << "drawn outside the live area";
    }
}

// At 10 points, the smallest size that most are shown at, two drawings could blur into one.
TEST(IconSet, HasADrawingOfItsOwnForEverySymbolInUse) {
    QMap<QString, QImage> drawn;
    for (const QString& name : usedSymbols) {
        SCOPED_TRACE(name.toStdString());
        ASSERT_TRUE(SymbolPainter::hasSymbol(name));
        const Symbol symbol{name, 10, SymbolWeight::regular, Qt::black};
        for (const double scale : testedScales) {
            const QImage image = SymbolPainter::image(symbol, scale);
            const QRect inner = image.rect().adjusted(1, 1, -1, -1);
            EXPECT_EQ(coveredAlpha(image), coveredAlpha(image.copy(inner))) << "scale " << scale;
            const double covered = coveredAlpha(image) / (255.0 * image.width() * image.height());
            EXPECT_GT(covered, 0.06) << "too faint";
            EXPECT_LT(covered, 0.6) << "a blot";
        }
        const QImage image = SymbolPainter::image(symbol, 1);
        for (auto other = drawn.cbegin(); other != drawn.cend(); ++other)
            EXPECT_GT(difference(image, *other), 12 * 255)
                << "looks like " << other.key().toStdString();
        drawn.insert(name, image);
    }
    const QStringList files = QDir(u":/icons"_s).entryList({u"*.svg"_s});
    EXPECT_EQ(files.size(), drawn.size()) << "a drawing that nothing uses";
}

TEST(AppIcon, IsADarkRoundedSquareWithTheMaskOnIt) {
    QSvgRenderer renderer(u":/app/app.veyla.Veyla.svg"_s);
    ASSERT_TRUE(renderer.isValid());
    for (const int side : {16, 32, 64, 256}) {
        QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        const auto colorAt = [&](double x, double y) {
            return image.pixelColor(static_cast<int>(x * side), static_cast<int>(y * side));
        };
        EXPECT_EQ(colorAt(0, 0).alpha(), 0);
        const QColor mask = colorAt(0.5, 0.45);
        const QColor eye = colorAt(0.35, 0.42);
        EXPECT_GT(mask.blue(), 200) << "at " << side;
        EXPECT_LT(eye.blue(), 120) << "at " << side;
        EXPECT_EQ(eye.alpha(), 255);
    }
}

}  // namespace
