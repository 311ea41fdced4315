#include "runtime/Snapshot.h"
#include "runtime/PluginContainerView.h"
#include "runtime/Runtime.h"

#include "support/Await.h"
#include "support/VersionLibrary.h"

#include <QApplication>
#include <QDir>
#include <QWidget>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

QImage decoded(const std::optional<QByteArray> &png)
{
    return png ? QImage::fromData(*png, "PNG") : QImage();
}

QImage filled(int width, int height, QColor colour)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

// A window holding one container, whose content is a plain area of `colour`.
struct Window {
    QWidget window;
    PluginContainerView *container;

    Window(Runtime &runtime, QColor colour, QSize size) : container(new PluginContainerView(&runtime, &window))
    {
        window.resize(size);
        container->setGeometry(0, 0, size.width(), size.height());
        auto *area = new QWidget(container);
        area->setAutoFillBackground(true);
        area->setPalette(QPalette(colour));
        container->layout()->addWidget(area);
    }
};

} // namespace

TEST(Snapshot, PicturesAreScaledDownToTheWidthAndFlattenedOnTheBackground)
{
    EXPECT_EQ(decoded(Snapshot::encode(filled(2000, 1000, Qt::red), 1400, std::nullopt)).size(), QSize(1400, 700));
    EXPECT_EQ(decoded(Snapshot::encode(filled(500, 300, Qt::red), 1400, Qt::white)).size(), QSize(500, 300));
    // Halves are rounded away from zero.
    EXPECT_EQ(decoded(Snapshot::encode(filled(4, 3, Qt::red), 2, std::nullopt)).size(), QSize(2, 2));
    EXPECT_EQ(decoded(Snapshot::encode(filled(4, 5, Qt::red), 2, std::nullopt)).size(), QSize(2, 3));
    EXPECT_EQ(Snapshot::encode(QImage(), 1400, Qt::white), std::nullopt);

    const QImage seeThrough = filled(10, 10, QColor(0, 0, 255, 0));
    EXPECT_EQ(decoded(Snapshot::encode(seeThrough, 1400, QColor(Qt::green))).pixelColor(5, 5), QColor(Qt::green));
    EXPECT_EQ(decoded(Snapshot::encode(seeThrough, 1400, std::nullopt)).pixelColor(5, 5).alpha(), 0);

    QWidget view;
    view.resize(0, 40);
    EXPECT_EQ(Snapshot::png(&view, 1400, Qt::white), std::nullopt) << "a view without area has no picture";
}

TEST(RuntimeSnapshot, TheKeyWindowsContainerIsTakenOtherwiseTheFirstShown)
{
    const QString cc = test::cCompiler();
    if (cc.isEmpty())
        GTEST_SKIP() << "No C compiler to make a test library with.";
    const Workspace workspace = Workspace::forName(QStringLiteral("Snapshot windows"));
    QDir(workspace.root).removeRecursively();
    test::buildVersionLibrary(cc, workspace, 1);

    Runtime runtime(workspace);
    Window red(runtime, Qt::red, QSize(300, 200));
    Window blue(runtime, Qt::blue, QSize(3000, 100));
    red.window.show();
    blue.window.show();
    EXPECT_EQ(runtime.snapshot(1400), std::nullopt) << "no version is loaded";

    ASSERT_EQ(runtime.load(1), std::nullopt);
    ASSERT_TRUE(test::spinUntil([&] { return red.container->shownGeneration() == runtime.generation(); }));
    QWidget elsewhere;
    elsewhere.show();
    QApplication::setActiveWindow(&elsewhere);
    ASSERT_TRUE(test::spinUntil([&] { return elsewhere.isActiveWindow(); }));
    QImage picture = decoded(runtime.snapshot(1400));
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.pixelColor(10, 10), QColor(Qt::red)) << "neither is key: the first";

    QApplication::setActiveWindow(&blue.window);
    ASSERT_TRUE(test::spinUntil([&] { return blue.window.isActiveWindow(); }));
    picture = decoded(runtime.snapshot(1400));
    EXPECT_EQ(picture.pixelColor(10, 10), QColor(Qt::blue));
    EXPECT_EQ(picture.width(), 1400);
    EXPECT_EQ(picture.height(), 47) << "100 × 1400 / 3000 rounds to 47";

    blue.window.hide();
    red.window.hide();
    EXPECT_EQ(runtime.snapshot(1400), std::nullopt) << "no container in a shown window";
}
