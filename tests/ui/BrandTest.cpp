#include "ui/Brand.h"
#include "ui/BrandFont.h"
#include "ui/Icons.h"
#include "ui/Spring.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>

using namespace zentoro;
using namespace zentoro::Brand;

TEST(StretchedText, PullingWidensEveryLetterButTheFirstUpToTheEndOfTheAxis)
{
    EXPECT_DOUBLE_EQ(StretchedText::letterWidth(0, 7, 1), 60);
    EXPECT_DOUBLE_EQ(StretchedText::letterWidth(6, 7, 0), 100);
    EXPECT_DOUBLE_EQ(StretchedText::letterWidth(6, 7, 1), 150);
    // Most of the growth comes at the end: the middle letter is below the straight line.
    EXPECT_LT(StretchedText::letterWidth(3, 7, 0), 80);

    const QString name = QStringLiteral("Kitchen");
    EXPECT_GT(StretchedText::outline(name, 40, 1).boundingRect().width(),
              StretchedText::outline(name, 40, 0).boundingRect().width() * 1.1);
    EXPECT_EQ(StretchedText::outline(QStringLiteral("K"), 40, 0).boundingRect(),
              StretchedText::outline(QStringLiteral("K"), 40, 1).boundingRect());
    // An overshooting spring beyond 1 still stops at the end of the axis: in two letters the
    // last one is there already at 1.
    const QString two = QStringLiteral("Ki");
    EXPECT_EQ(StretchedText::outline(two, 40, 1.3).boundingRect(), StretchedText::outline(two, 40, 1).boundingRect());
    EXPECT_NE(StretchedText::outline(two, 40, 0.5).boundingRect(), StretchedText::outline(two, 40, 1).boundingRect());

    // Letters are characters as people count them.
    EXPECT_EQ(StretchedText::letters(QStringLiteral("Cafe\u0301 \U0001F600")),
              (QStringList{"C", "a", "f", QStringLiteral("e\u0301"), " ", QStringLiteral("\U0001F600")}));
}

TEST(BrandFont, TheBundledTypefaceIsReadAndItsAxesAreClamped)
{
    ASSERT_TRUE(BrandFont::registered());
    EXPECT_EQ(BrandFont::anybody(40, 20, 850).width, 50);
    EXPECT_EQ(BrandFont::anybody(40, 190, 850).width, 150);
    EXPECT_EQ(BrandFont::anybody(40, 77, 850).width, 77);

    // The width axis really changes the drawn letters: wider settings draw wider words.
    const BrandFont::Font narrow = BrandFont::anybody(40, 50, 850);
    const BrandFont::Font wide = BrandFont::anybody(40, 150, 850);
    const QString word = QStringLiteral("Zentoro");
    EXPECT_GT(wide.advance(word), narrow.advance(word) * 1.4);
    EXPECT_GT(wide.outline(word).boundingRect().width(), narrow.outline(word).boundingRect().width() * 1.4);
    // Letters stand on the baseline: the outline lies mostly above y = 0.
    const QRectF bounds = narrow.outline(QStringLiteral("H")).boundingRect();
    EXPECT_LT(bounds.top(), -20);
    EXPECT_NEAR(bounds.bottom(), 0, 1);
}

TEST(Spring, OvershootsSettlesAndFollowsTheSamePathInStepsOfAnySize)
{
    Spring pull{pullResponse, pullDamping, 0, 0, 1};
    double peak = 0;
    double settledAt = -1;
    for (int frame = 1; frame <= 120; ++frame) {
        pull.advance(1.0 / 60);
        peak = std::max(peak, pull.value);
        if (settledAt < 0 && pull.isSettled())
            settledAt = frame / 60.0;
    }
    EXPECT_GT(peak, 1.01);
    EXPECT_GT(settledAt, 0.8);
    EXPECT_LT(settledAt, 2.0);
    EXPECT_NEAR(pull.value, 1, 1e-3);

    Spring fine{0.5, 0.42, 0, 0, 1};
    Spring coarse = fine;
    for (int i = 0; i < 30; ++i)
        fine.advance(0.01);
    coarse.advance(0.3);
    EXPECT_NEAR(fine.value, coarse.value, 1e-9);
    EXPECT_NEAR(fine.velocity, coarse.velocity, 1e-9);

    // Leaving mid-way: the word keeps moving out for a moment before it returns.
    Spring leaving{0.5, 0.42, 0, 0, 1};
    leaving.advance(0.1);
    const double at = leaving.value;
    leaving.target = 0;
    leaving.advance(0.01);
    EXPECT_GT(leaving.value, at);

    Spring critical{0.5, 1.0, 0, 0, 1};
    double highest = 0;
    for (int i = 0; i < 200; ++i) {
        critical.advance(0.01);
        highest = std::max(highest, critical.value);
    }
    EXPECT_LE(highest, 1.0 + 1e-9);
}

TEST(StretchGlyph, FitsItsImageAndIsAThinOutline)
{
    const QSizeF size(stretchGlyphSize);
    const QPainterPath path = stretchGlyphPath(size);
    const QRectF bounds = path.boundingRect();
    EXPECT_GE(bounds.left(), 0);
    EXPECT_GE(bounds.top(), 0);
    EXPECT_LE(bounds.right(), size.width());
    EXPECT_LE(bounds.bottom(), size.height());

    // Drawn in a colour, the glyph is a thin outline: coloured pixels, mostly empty inside.
    const QPixmap pixmap = stretchGlyph(Qt::red).pixmap(stretchGlyphSize);
    const QImage image = pixmap.toImage();
    int painted = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            painted += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
    EXPECT_GT(painted, 20);
    EXPECT_LT(painted, image.width() * image.height() / 2);
    EXPECT_EQ(image.pixelColor(image.width() / 2, image.height() / 2).alpha(), 0);
}

TEST(StretchWordmark, PullsOnHoverShrinksWhenShortOfRoomAndIsOneHeading)
{
    StretchWordmark wordmark(QStringLiteral("Kitchen Timer"), 40);
    EXPECT_EQ(wordmark.accessibleName(), QStringLiteral("Kitchen Timer"));
    const QSize natural = wordmark.sizeHint();
    EXPECT_GT(natural.width(), 100);
    EXPECT_NEAR(wordmark.minimumSizeHint().width(), natural.width() * minimumScale, 3);

    wordmark.resize(natural);
    EXPECT_DOUBLE_EQ(wordmark.drawnScale(), 1);
    wordmark.resize(natural.width() / 2, natural.height());
    EXPECT_NEAR(wordmark.drawnScale(), 0.5, 0.02);
    wordmark.resize(natural.width() / 10, natural.height());
    EXPECT_DOUBLE_EQ(wordmark.drawnScale(), minimumScale);

    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QApplication::sendEvent(&wordmark, &enter);
    EXPECT_TRUE(wordmark.isPulled());
    QElapsedTimer clock;
    clock.start();
    double highest = 0;
    while (clock.elapsed() < 1500) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
        highest = std::max(highest, wordmark.pull());
    }
    EXPECT_GT(highest, 1.05);
    EXPECT_DOUBLE_EQ(wordmark.pull(), 1);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&wordmark, &leave);
    EXPECT_FALSE(wordmark.isPulled());
}

TEST(Icons, EveryNameTheProgramUsesHasItsOwnDrawingAndOthersAreNeutral)
{
    const QStringList used{
        "arrow.clockwise", "arrow.up.circle.fill", "arrow.down.circle", "square.and.pencil", "pencil",
        "info.circle", "exclamationmark.triangle", "exclamationmark.triangle.fill", "exclamationmark.octagon.fill",
        "xmark.octagon", "clock.arrow.circlepath", "checkmark", "checkmark.circle.fill", "stop.circle",
        "stop.circle.fill", "text.alignleft", "doc.text", "folder", "trash", "hammer", "camera", "wrench",
        "gearshape", "chevron.right", "chevron.down", "person.2", "key"};
    QSet<QByteArray> drawings;
    for (const QString &name : used) {
        EXPECT_TRUE(Icons::knows(name)) << name.toStdString();
        QFile file(Icons::resourceFor(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        drawings.insert(file.readAll());
        const QImage image = Icons::pixmap(name, 24, Qt::blue, 1).toImage();
        int painted = 0;
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 24; ++x)
                if (const QColor c = image.pixelColor(x, y); c.alpha() > 100) {
                    ++painted;
                    EXPECT_TRUE(c.red() == 0 && c.green() == 0 && c.blue() > 200) << name.toStdString();
                }
        EXPECT_GT(painted, 15) << name.toStdString();
    }
    EXPECT_EQ(drawings.size(), used.size());

    EXPECT_FALSE(Icons::knows(QStringLiteral("../fonts/Anybody")));
    EXPECT_EQ(Icons::resourceFor(QStringLiteral("sparkles.rectangle.stack")), Icons::resourceFor(QStringLiteral("nope")));
    EXPECT_FALSE(Icons::pixmap(QStringLiteral("nope"), 16, Qt::black).toImage().isNull());
}
