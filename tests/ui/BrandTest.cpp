#include "ui/Brand.h"
#include "ui/BrandFont.h"
#include "ui/Icons.h"
#include "ui/Spring.h"

#include <QAccessible>
#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>

using namespace zentoro;
using namespace zentoro::Brand;

namespace {

// Pixels drawn more than half opaque.
int painted(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y).alpha() > 128 ? 1 : 0;
    return count;
}

// The highest value a spring reaches in `steps` steps of `dt`.
double peakOf(Spring &spring, int steps, double dt)
{
    double peak = spring.value;
    for (int i = 0; i < steps; ++i) {
        spring.advance(dt);
        peak = std::max(peak, spring.value);
    }
    return peak;
}

} // namespace

TEST(StretchedText, PullingWidensEveryLetterButTheFirstUpToTheEndOfTheAxis)
{
    // Most of the growth comes at the end: the middle letter is below the straight line.
    EXPECT_DOUBLE_EQ(StretchedText::letterWidth(6, 7, 1), 150);
    EXPECT_LT(StretchedText::letterWidth(3, 7, 0), 80);
    const auto width = [](const QString &text, double pull) {
        return StretchedText::outline(text, 40, pull).boundingRect().width();
    };
    EXPECT_GT(width("Kitchen", 1), width("Kitchen", 0) * 1.1);
    EXPECT_EQ(width("K", 0), width("K", 1));
    // An overshooting spring beyond 1 still stops at the end of the axis.
    EXPECT_EQ(width("Ki", 1.3), width("Ki", 1));

    // Letters Anybody lacks come from a system face, each its own shape rather than one empty box.
    const auto shape = [](const QString &letter) { return StretchedText::outline(letter, 40, 0); };
    for (const QString letter : {QStringLiteral("Ж"), QStringLiteral("Ω")})
        EXPECT_GT(shape(letter).boundingRect().width(), 10) << letter.toStdString();
    EXPECT_NE(shape(QStringLiteral("Ж")), shape(QStringLiteral("Ω")));
    EXPECT_NE(shape(QStringLiteral("Ж")), shape(QStringLiteral("Д")));

    // Letters are characters as people count them.
    EXPECT_EQ(StretchedText::letters(QStringLiteral("Cafe\u0301 \U0001F600")),
              (QStringList{"C", "a", "f", QStringLiteral("e\u0301"), " ", QStringLiteral("\U0001F600")}));
}

TEST(BrandFont, TheBundledTypefaceIsReadAndItsAxesAreClamped)
{
    ASSERT_TRUE(BrandFont::registered());
    EXPECT_EQ(BrandFont::anybody(40, 190, 850).width, 150);
    // The width axis really changes the drawn letters.
    const BrandFont::Font narrow = BrandFont::anybody(40, 50, 850);
    const BrandFont::Font wide = BrandFont::anybody(40, 150, 850);
    EXPECT_GT(wide.advance("Zentoro"), narrow.advance("Zentoro") * 1.4);
    EXPECT_GT(wide.outline("Zentoro").boundingRect().width(), narrow.outline("Zentoro").boundingRect().width() * 1.4);
    // Letters stand on the baseline.
    const QRectF bounds = narrow.outline(QStringLiteral("H")).boundingRect();
    EXPECT_LT(bounds.top(), -20);
    EXPECT_NEAR(bounds.bottom(), 0, 1);
}

TEST(Spring, OvershootsSettlesAndFollowsTheSamePathInStepsOfAnySize)
{
    Spring pull{pullResponse, pullDamping, 0, 0, 1};
    EXPECT_GT(peakOf(pull, 48, 1.0 / 60), 1.01);
    EXPECT_FALSE(pull.isSettled()) << "settled within 0.8 s";
    peakOf(pull, 72, 1.0 / 60);
    EXPECT_TRUE(pull.isSettled()) << "not settled after 2 s";
    EXPECT_NEAR(pull.value, 1, 1e-3);

    Spring fine{0.5, 0.42, 0, 0, 1};
    Spring coarse = fine;
    peakOf(fine, 30, 0.01);
    coarse.advance(0.3);
    EXPECT_NEAR(fine.value, coarse.value, 1e-9);
    EXPECT_NEAR(fine.velocity, coarse.velocity, 1e-9);

    Spring critical{0.5, 1.0, 0, 0, 1};
    EXPECT_LE(peakOf(critical, 200, 0.01), 1.0 + 1e-9);
}

TEST(StretchGlyph, FitsItsImageAndIsAThinOutline)
{
    const QSizeF size(stretchGlyphSize);
    EXPECT_TRUE(QRectF(QPointF(), size).contains(stretchGlyphPath(size).boundingRect()));

    const QImage image = stretchGlyph(Qt::red).pixmap(stretchGlyphSize).toImage();
    EXPECT_GT(painted(image), 20);
    EXPECT_LT(painted(image), image.width() * image.height() / 2);
    EXPECT_EQ(image.pixelColor(image.width() / 2, image.height() / 2).alpha(), 0);
}

TEST(StretchWordmark, PullsOnHoverShrinksWhenShortOfRoomAndIsOneHeading)
{
    StretchWordmark wordmark(QStringLiteral("Kitchen Timer"), 40);
    QAccessibleInterface *face = QAccessible::queryAccessibleInterface(&wordmark);
    ASSERT_TRUE(face);
    EXPECT_EQ(face->role(), QAccessible::Heading);
    EXPECT_EQ(face->text(QAccessible::Name), QStringLiteral("Kitchen Timer"));
    EXPECT_EQ(face->childCount(), 0);
    const QSize natural = wordmark.sizeHint();
    EXPECT_NEAR(wordmark.minimumSizeHint().width(), natural.width() * minimumScale, 3);
    wordmark.resize(natural);
    EXPECT_DOUBLE_EQ(wordmark.drawnScale(), 1);
    wordmark.resize(natural.width() / 2, natural.height());
    EXPECT_NEAR(wordmark.drawnScale(), 0.5, 0.02);
    wordmark.resize(natural.width() / 10, natural.height());
    EXPECT_DOUBLE_EQ(wordmark.drawnScale(), minimumScale);

    wordmark.resize(natural);
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QApplication::sendEvent(&wordmark, &enter);
    QElapsedTimer clock;
    clock.start();
    double highest = 0;
    while (clock.elapsed() < 1500) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
        highest = std::max(highest, wordmark.pull());
    }
    EXPECT_GT(highest, 1.05);
    EXPECT_DOUBLE_EQ(wordmark.pull(), 1);
    // Pulled out, the whole word stands in its widget, centred.
    const QImage drawn = wordmark.grab().toImage();
    int left = drawn.width();
    int right = -1;
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x)
            if (qGray(drawn.pixel(x, y)) < 100) {
                left = std::min(left, x);
                right = std::max(right, x);
            }
    EXPECT_GE(left, 0);
    EXPECT_LT(right, drawn.width() - 1);
    EXPECT_NEAR(left, drawn.width() - 1 - right, 4);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&wordmark, &leave);
    EXPECT_FALSE(wordmark.isPulled());
}

TEST(Icons, EveryNameTheProgramUsesHasItsOwnDrawingAndOthersAreNeutral)
{
    const QStringList used{"arrow.clockwise",
                           "arrow.up.circle.fill",
                           "arrow.down.circle",
                           "square.and.pencil",
                           "pencil",
                           "info.circle",
                           "exclamationmark.triangle",
                           "exclamationmark.triangle.fill",
                           "exclamationmark.octagon.fill",
                           "xmark.octagon",
                           "clock.arrow.circlepath",
                           "checkmark",
                           "checkmark.circle.fill",
                           "stop.circle",
                           "stop.circle.fill",
                           "text.alignleft",
                           "doc.text",
                           "folder",
                           "trash",
                           "hammer",
                           "camera",
                           "wrench",
                           "gearshape",
                           "chevron.right",
                           "chevron.down",
                           "person.2",
                           "key"};
    QSet<QByteArray> drawings;
    for (const QString &name : used) {
        QFile file(Icons::resourceFor(name));
        ASSERT_TRUE(Icons::knows(name) && file.open(QIODevice::ReadOnly)) << name.toStdString();
        drawings.insert(file.readAll());
        // Drawn in the colour asked for, and nothing else.
        const QImage image = Icons::pixmap(name, 24, Qt::blue, 1).toImage();
        EXPECT_GT(painted(image), 15) << name.toStdString();
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 24; ++x)
                if (const QColor c = image.pixelColor(x, y); c.alpha() > 100)
                    ASSERT_TRUE(c.red() == 0 && c.green() == 0 && c.blue() > 200) << name.toStdString();
    }
    EXPECT_EQ(drawings.size(), used.size());

    EXPECT_FALSE(Icons::knows(QStringLiteral("../fonts/Anybody")));
    EXPECT_EQ(Icons::resourceFor(QStringLiteral("sparkles.rectangle.stack")),
              Icons::resourceFor(QStringLiteral("nope")));
    EXPECT_FALSE(Icons::pixmap(QStringLiteral("nope"), 16, Qt::black).toImage().isNull());
}
