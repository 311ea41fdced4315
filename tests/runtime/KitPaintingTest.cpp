#include "runtime/KitPainting.h"

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

QImage symbol(const char *name)
{
    QImage image(48, 48, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    KitPainting::drawSymbol(painter, QString::fromLatin1(name), QRectF(0, 0, 48, 48), QBrush(Qt::black));
    return image;
}

bool dark(const QImage &image, int x, int y)
{
    return qGray(image.pixel(x, y)) < 128;
}

ZentoroText text(const char *utf8, int lineLimit = 0)
{
    static ZentoroTextRun run;
    run = ZentoroTextRun{utf8, ZentoroFont{13, 400, 0, 0, 0}, ZentoroPaint{}, 0, 0};
    return ZentoroText{&run, 1, ZENTORO_ALIGN_LEADING, lineLimit};
}

} // namespace

TEST(KitPainting, SymbolsKeepTheirInnerStrokesFillVariantsFillAndUnknownNamesFallBack)
{
    // The tick inside "checkmark.circle" crosses the middle; the plain circle leaves it empty.
    EXPECT_TRUE(dark(symbol("checkmark.circle"), 22, 30));
    EXPECT_FALSE(dark(symbol("circle"), 22, 30));
    EXPECT_TRUE(dark(symbol("circle.fill"), 22, 30));
    EXPECT_FALSE(dark(symbol("heart"), 24, 24));
    EXPECT_TRUE(dark(symbol("heart.fill"), 24, 24));

    // Names fall back to their base, or else to a neutral glyph.
    EXPECT_TRUE(KitPainting::knowsSymbol(QStringLiteral("sun.max.fill")));
    EXPECT_TRUE(KitPainting::knowsSymbol(QStringLiteral("person.crop.circle")));
    EXPECT_FALSE(KitPainting::knowsSymbol(QStringLiteral("no.such.symbol")));
    EXPECT_TRUE(dark(symbol("no.such.symbol"), 8, 24)) << "an unknown name still draws something";
}

TEST(KitPainting, TextWrapsAtTheWidthAndStopsAtTheLineLimit)
{
    const ZentoroText sentence = text("the quick brown fox jumps over the lazy dog");
    const QSizeF single = KitPainting::measure(sentence, -1);
    const QSizeF wrapped = KitPainting::measure(sentence, single.width() / 3);
    EXPECT_LE(wrapped.width(), single.width() / 3 + 0.5);
    EXPECT_GE(wrapped.height(), single.height() * 3);
    const ZentoroText limited = text("the quick brown fox jumps over the lazy dog", 2);
    EXPECT_NEAR(KitPainting::measure(limited, single.width() / 3).height(), single.height() * 2, 1);
    // Line breaks in the text always start a new line, wrapping or not.
    EXPECT_NEAR(KitPainting::measure(text("a\nb"), -1).height(), single.height() * 2, 1);
}

TEST(KitPainting, AngularGradientsTurnClockwiseFromTheirStartAngle)
{
    const ZentoroGradientStop stops[] = {{0, {1, 0, 0, 1}}, {0.5, {0, 0, 1, 1}}, {1, {1, 0, 0, 1}}};
    ZentoroPaint paint{};
    paint.kind = ZENTORO_PAINT_ANGULAR;
    paint.stops = stops;
    paint.stopCount = 3;
    paint.start = {50, 50};
    QImage image(100, 100, QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.fillRect(image.rect(), KitPainting::brush(paint));
    painter.end();
    // A quarter turn clockwise from three o'clock is six o'clock, halfway to blue;
    // twelve o'clock is three quarters round, past blue towards red again.
    const QColor below = image.pixelColor(50, 95), left = image.pixelColor(5, 50);
    EXPECT_GT(left.blue(), 200);
    EXPECT_LT(left.red(), 60);
    EXPECT_NEAR(below.red(), below.blue(), 40);
}

TEST(KitPainting, KeptTextLayoutsFollowEverythingThatShapesThem)
{
    // Texts that differ only in size, width, line limit or colour never share a kept layout.
    ZentoroTextRun run{"kept kept kept kept", ZentoroFont{13, 400, 0, 0, 0}, ZentoroPaint{}, 0, 0};
    const ZentoroText paragraph{&run, 1, ZENTORO_ALIGN_LEADING, 0};
    const QSizeF small = KitPainting::measure(paragraph, -1);
    run.font.size = 26;
    const QSizeF large = KitPainting::measure(paragraph, -1);
    EXPECT_GT(large.width(), small.width() * 1.5);
    EXPECT_GT(KitPainting::measure(paragraph, large.width() / 2).height(), large.height() * 1.5);
    const ZentoroText limited{&run, 1, ZENTORO_ALIGN_LEADING, 1};
    EXPECT_NEAR(KitPainting::measure(limited, large.width() / 2).height(), large.height(), 1);

    const auto drawn = [&](ZentoroColor color) {
        run.paint.color = color;
        QImage image(int(large.width()) + 4, int(large.height()) + 4, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        KitPainting::drawText(painter, paragraph, QRectF(QPointF(0, 0), large));
        painter.end();
        int red = 0, blue = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                red += c.red() > 200 && c.blue() < 100;
                blue += c.blue() > 200 && c.red() < 100;
            }
        return std::pair{red, blue};
    };
    EXPECT_GT(drawn({1, 0, 0, 1}).first, 20);
    const auto [red, blue] = drawn({0, 0, 1, 1});
    EXPECT_EQ(red, 0);
    EXPECT_GT(blue, 20);
}

TEST(KitPainting, ATextIsMeasuredAgainAfterTheApplicationFontChanges)
{
    const QFont original = QApplication::font();
    const ZentoroText sentence = text("measured again");
    const QSizeF before = KitPainting::measure(sentence, -1);
    QFont wide(original);
    wide.setLetterSpacing(QFont::AbsoluteSpacing, 6);
    QApplication::setFont(wide);
    KitPainting::forgetTextLayouts();
    const QSizeF after = KitPainting::measure(sentence, -1);
    QApplication::setFont(original);
    KitPainting::forgetTextLayouts();
    EXPECT_GT(after.width(), before.width() + 30);
}
