#include "KitTestSupport.h"

#include "support/Await.h"
#include "support/Files.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTest>

#include <functional>
#include <optional>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace std::chrono_literals;

// The reference apps, driven through the Qt host as a user drives them: clicks, typing and
// drags go to the view, and what the app shows is read back from its pixels.
namespace {

void *loadApp(const QString &name)
{
    const QString file = QStringLiteral(ZENTORO_TESTS_DIR "/kit_apps/%1/App.swift").arg(name);
    return test::loadApp(QStringLiteral("Ref") + name, test::readText(file));
}

struct Window : test::KitWindow {
    explicit Window(void *handle) : KitWindow(handle, {800, 600}) {}
    void send(QEvent::Type type, QPoint at, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, at, view->mapToGlobal(at), Qt::LeftButton, buttons, {});
        QApplication::sendEvent(view, &event);
    }
    void drag(const std::vector<QPoint> &points)
    {
        send(QEvent::MouseButtonPress, points.front(), Qt::LeftButton);
        for (const QPoint &p : points)
            send(QEvent::MouseMove, p, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, points.back(), Qt::NoButton);
    }
};

using Test = std::function<bool(QColor)>;

// The points, row by row, in `area` whose colour passes `test`.
QList<QPoint> matching(const QImage &image, const Test &test, QRect area)
{
    QList<QPoint> points;
    area = area.intersected(image.rect());
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if (test(image.pixelColor(x, y)))
                points.append(QPoint(x, y));
    return points;
}

std::optional<QPoint> find(const QImage &image, const Test &test, QRect area)
{
    const QList<QPoint> points = matching(image, test, area);
    return points.isEmpty() ? std::nullopt : std::optional(points.first());
}

int count(const QImage &image, const Test &test, QRect area)
{
    return int(matching(image, test, area).size());
}

const Test green = [](QColor c) { return c.green() > 140 && c.red() < 110 && c.blue() < 130; };
const Test red = [](QColor c) { return c.red() > 200 && c.green() < 90 && c.blue() < 90; };
const Test black = [](QColor c) { return c.red() < 40 && c.green() < 40 && c.blue() < 40; };
const Test accent = [](QColor c) { return c.blue() > 150 && c.red() < 90; };
const Test pinkish = [](QColor c) {
    return c.red() > 200 && c.green() > 150 && c.green() < 225 && c.blue() < 225 && c.red() - c.green() > 15;
};
const Test greyish = [](QColor c) { return std::abs(c.red() - c.blue()) < 12 && c.red() > 90 && c.red() < 190; };

} // namespace

TEST(KitApps, TodoListAddsChecksDeletesAndKeepsItsItemsAcrossRestarts)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = loadApp(QStringLiteral("TodoList"));
    ASSERT_NE(handle, nullptr);
    {
        Window window(handle);
        ASSERT_EQ(window.view->error(), QString());
        window.image();
        auto fields = window.view->findChildren<QLineEdit *>();
        ASSERT_EQ(fields.size(), 1);
        EXPECT_EQ(fields.first()->placeholderText(), QStringLiteral("New task"));
        QTest::keyClicks(fields.first(), QStringLiteral("Buy milk"));
        QTest::keyClick(fields.first(), Qt::Key_Return);
        ASSERT_TRUE(test::spinUntil([&] { return fields.first()->text().isEmpty(); }))
            << "the field clears after adding";
        // Within a moment the item is on disk in the copy's own settings, with no help from the host.
        const QString settings = qEnvironmentVariable("XDG_CONFIG_HOME") + u'/' + test::kitTestCopy().defaultsSuite() +
                                 ".plist";
        const auto stored = [&] {
            static const QRegularExpression data(QStringLiteral("<key>todoItems</key>\\s*<data>([^<]*)</data>"));
            return QByteArray::fromBase64(data.match(test::readText(settings)).captured(1).toLatin1());
        };
        EXPECT_TRUE(test::spinUntil([&] { return stored().contains("Buy milk"); }, 1s))
            << test::readText(settings).toStdString();

        // The new row's empty circle sits before its title (the first dark text under the field,
        // below the grey section header); a click checks it.
        const QImage listed = window.image();
        const auto title = find(listed, black, QRect(0, fields.first()->geometry().bottom() + 10, 800, 200));
        ASSERT_TRUE(title.has_value());
        const auto circle = find(listed, greyish, QRect(0, title->y() - 10, title->x(), 30));
        ASSERT_TRUE(circle.has_value());
        EXPECT_EQ(count(listed, green, listed.rect()), 0);
        window.click(*circle + QPoint(2, 6));
        ASSERT_TRUE(test::spinUntil([&] { return count(window.image(), green, QRect(0, 0, 60, 600)) > 20; }));
    }
    // A new root view of the same app (the app started again) shows the checked item.
    Window restarted(handle);
    ASSERT_TRUE(test::spinUntil([&] { return count(restarted.image(), green, QRect(0, 0, 60, 600)) > 20; }));

    // Hovering the row shows its red delete button at the trailing edge; clicking it empties the list.
    const auto row = find(restarted.image(), green, QRect(0, 0, 60, 600));
    ASSERT_TRUE(row.has_value());
    restarted.send(QEvent::MouseMove, *row + QPoint(300, 0), Qt::NoButton);
    std::optional<QPoint> remove;
    ASSERT_TRUE(test::spinUntil(
        [&] { return (remove = find(restarted.image(), red, QRect(600, row->y() - 20, 200, 40))).has_value(); }));
    restarted.click(*remove + QPoint(2, 4));
    EXPECT_TRUE(test::spinUntil([&] { return count(restarted.image(), green, restarted.image().rect()) == 0; }));
}

TEST(KitApps, PomodoroRingFollowsTheSessionAndTheStartButtonRunsTheClock)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = loadApp(QStringLiteral("Pomodoro"));
    ASSERT_NE(handle, nullptr);
    Window window(handle);
    ASSERT_EQ(window.view->error(), QString());

    // The ring's faint track, in the focus session's red, runs down the middle column.
    const QImage first = window.image();
    const auto track = find(first, pinkish, QRect(398, 60, 4, 300));
    ASSERT_TRUE(track.has_value());
    EXPECT_EQ(count(first, red, QRect(380, track->y(), 40, 20)), 0) << "no progress before the start";

    // Start is the prominent button; after a second or two the ring's cap shows solid red at the top.
    const auto start = find(first, accent, QRect(0, track->y() + 260, 800, 120));
    ASSERT_TRUE(start.has_value());
    window.click(*start + QPoint(4, 4));
    EXPECT_TRUE(test::spinUntil([&] { return count(window.image(), red, QRect(380, track->y(), 40, 20)) > 20; },
                                std::chrono::seconds(4)));

    // Choosing the short break in the segmented picker paints the ring green and stops the clock.
    const auto picker = find(first, accent, QRect(0, 0, 800, track->y()));
    ASSERT_TRUE(picker.has_value()) << "the selected segment is drawn in the accent colour";
    window.click(QPoint(400, picker->y() + 6));
    EXPECT_TRUE(test::spinUntil([&] { return count(window.image(), red, QRect(300, track->y(), 200, 260)) == 0; }));
    // The faint track of the break's green over the window's grey.
    EXPECT_GT(count(
                  window.image(), [](QColor c) { return c.green() > c.red() + 8 && c.green() > c.blue() + 8; },
                  QRect(270, track->y(), 260, 260)),
              500);
}

TEST(KitApps, WorldClockShowsFiveCitiesAndTicksEverySecond)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = loadApp(QStringLiteral("WorldClock"));
    ASSERT_NE(handle, nullptr);
    Window window(handle);
    ASSERT_EQ(window.view->error(), QString());
    const QImage before = window.image();
    // Five rounded cards, one per city: count the runs of card background down the left margin.
    int cards = 0;
    bool inside = false;
    const QColor page = before.pixelColor(2, 2);
    for (int y = 0; y < before.height(); ++y) {
        const bool card = before.pixelColor(60, y) != page;
        if (card && !inside)
            ++cards;
        inside = card;
    }
    EXPECT_GE(cards, 6) << "the title and five cities";
    EXPECT_TRUE(test::spinUntil([&] { return window.image() != before; }, std::chrono::seconds(3)))
        << "the seconds change without any input";
}

TEST(KitApps, SketchpadDrawsStrokesInTheChosenColourAndClears)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = loadApp(QStringLiteral("Sketchpad"));
    ASSERT_NE(handle, nullptr);
    Window window(handle);
    ASSERT_EQ(window.view->error(), QString());
    window.image();
    const QRect canvas(0, 120, 800, 480);

    window.drag({{100, 300}, {150, 300}, {200, 300}, {250, 300}});
    ASSERT_TRUE(test::spinUntil([&] { return count(window.image(), black, canvas) > 100; }));
    EXPECT_TRUE(black(window.image().pixelColor(175, 300)));

    // The red swatch in the palette picks the colour of the next stroke.
    const auto swatch = find(window.image(), red, QRect(0, 0, 400, 80));
    ASSERT_TRUE(swatch.has_value());
    window.click(*swatch + QPoint(3, 8));
    window.drag({{100, 400}, {200, 420}, {300, 440}});
    ASSERT_TRUE(test::spinUntil([&] { return count(window.image(), red, canvas) > 100; }));
    EXPECT_GT(count(window.image(), black, canvas), 100) << "the first stroke stays";

    // Clear is the red-titled button at the trailing end of the bar.
    const auto clear = find(window.image(), red, QRect(600, 0, 200, 80));
    ASSERT_TRUE(clear.has_value());
    window.click(*clear);
    EXPECT_TRUE(test::spinUntil([&] {
        const QImage image = window.image();
        return count(image, black, canvas) == 0 && count(image, red, canvas) == 0;
    }));
}
