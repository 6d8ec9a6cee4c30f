#include "ui/Fonts.h"
#include "ui/Painting.h"
#include "ui/Symbols.h"

#include "uitest.h"

#include <QApplication>
#include <QFontInfo>
#include <QRegularExpression>

using namespace tuppi;

namespace {

const QString half = u"test.half"_qs; // its left half is filled

TEST(SymbolPixmap, isDrawnForTheDeviceAndNotScaled)
{
    for (const auto &[ratio, pixels] : {std::pair(1.0, 16), {1.25, 20}, {2.0, 32}}) {
        const QPixmap pixmap = SymbolPixmap(half, Qt::red, 16, ratio);
        EXPECT_EQ(pixmap.size(), QSize(pixels, pixels));
        EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
        const QImage image = pixmap.toImage();
        // A scaled picture would have a soft edge in the middle.
        EXPECT_EQ(image.pixelColor(pixels / 2 - 1, pixels / 2).alpha(), 255) << ratio;
        EXPECT_EQ(image.pixelColor(pixels / 2, pixels / 2).alpha(), 0) << ratio;
    }
}

TEST(SymbolPixmap, takesTheTintWhateverItWasDrawnIn)
{
    EXPECT_COLOUR(SymbolPixmap(half, QColor(11, 37, 69), 16, 1).toImage().pixelColor(4, 8),
                  QColor(11, 37, 69));
    EXPECT_COLOUR(SymbolPixmap(half, Qt::white, 16, 1).toImage().pixelColor(4, 8), Qt::white);
    EXPECT_NEAR(SymbolPixmap(half, QColor(0, 0, 0, 128), 16, 1).toImage().pixelColor(4, 8).alpha(), 128, 2);
}

TEST(SymbolPixmap, warnsOfAMissingSymbol)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"no symbol named.*no.such"_qs));
    EXPECT_TRUE(SymbolPixmap(u"no.such"_qs, Qt::red, 16, 1).isNull());
}

TEST(DrawSymbol, copiesPixelsWhereverItIsDrawn)
{
    for (const double ratio : {1.0, 1.25, 2.0}) {
        for (double shift = 0; shift < 2; shift += 0.1) {
            QImage image(80, 80, QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(ratio);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            EXPECT_NEAR(deviceScale(painter), ratio, 1e-9);
            drawSymbol(painter, half, Qt::red, 16, QRectF(3 + shift, 7 - shift / 2, 29, 31));
            painter.end();
            int soft = 0;
            int full = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const int alpha = image.pixelColor(x, y).alpha();
                    soft += alpha > 0 && alpha < 255;
                    full += alpha == 255;
                }
            }
            const int side = qRound(16 * ratio);
            EXPECT_EQ(soft, 0) << ratio << ' ' << shift;
            EXPECT_EQ(full, side / 2 * side) << ratio << ' ' << shift;
        }
    }
}

TEST(Fonts, takeSizesInLogicalPixels)
{
    EXPECT_EQ(System(15, QFont::ExtraBold).pixelSize(), 15);
    EXPECT_EQ(System(15, QFont::ExtraBold).weight(), QFont::ExtraBold);
    EXPECT_EQ(System(12.5).pixelSize(), 13);
    EXPECT_EQ(System(11.4).pixelSize(), 11);
    EXPECT_EQ(QFontInfo(System(12.5)).pixelSize(), 13);
}

TEST(Fonts, roundedTakesTheFirstThatIsInstalled)
{
    EXPECT_EQ(RoundedFamily({u"Arial"_qs, u"Comfortaa"_qs, u"Quicksand"_qs}), u"Quicksand"_qs);
    EXPECT_EQ(RoundedFamily({u"quicksand"_qs, u"Nunito"_qs}), u"Nunito"_qs);
    EXPECT_EQ(RoundedFamily({u"Arial"_qs}), QString());
    const QFont rounded = Rounded(28, QFont::DemiBold);
    EXPECT_EQ(rounded.pixelSize(), 28);
    EXPECT_EQ(rounded.weight(), QFont::DemiBold);
    EXPECT_TRUE(rounded.families().contains(QApplication::font().families().constFirst()))
        << "the system's font stays behind it";
}

TEST(PlainToolTip, showsMarkupAsText)
{
    EXPECT_EQ(plainToolTip(u"Remove…"_qs), u"Remove…"_qs);
    EXPECT_EQ(plainToolTip(u"<b>a</b>"_qs), u"<qt>&lt;b&gt;a&lt;/b&gt;</qt>"_qs);
}

} // namespace
