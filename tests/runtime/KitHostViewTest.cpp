#include "KitTestSupport.h"

#include "support/Await.h"

#include "runtime/KitHostView.h"

#include <QLineEdit>
#include <QTest>

#include <dlfcn.h>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

// Apps written as a model writes them. Each shows its state as coloured squares, so a
// test reads the state from the pixels the way a user sees it.
const char *counterApp = R"swift(
import SwiftUI

struct AppRoot: View {
    @State private var count = 0
    var body: some View {
        VStack(spacing: 0) {
            (count == 0 ? Color.red : Color.green).frame(width: 100, height: 50)
            Button { count += 1 } label: { Color.blue.frame(width: 80, height: 40) }
                .buttonStyle(.plain)
            Text("Pressed \(count) times")
        }
    }
}
)swift";

const char *fieldApp = R"swift(
import SwiftUI

struct AppRoot: View {
    @State private var name = ""
    @State private var submitted = false
    var body: some View {
        VStack(spacing: 0) {
            (name == "abc" ? Color.green : Color.red).frame(width: 100, height: 50)
            (submitted ? Color.green : Color.red).frame(width: 100, height: 50)
            TextField("Name", text: $name).onSubmit { submitted = true }.frame(width: 200)
        }
    }
}
)swift";

const char *clockApp = R"swift(
import SwiftUI

final class Ticker: ObservableObject {
    @Published var fired = false
    init() {
        Timer.scheduledTimer(withTimeInterval: 0.05, repeats: false) { [weak self] _ in self?.fired = true }
    }
}
struct AppRoot: View {
    @State private var queued = false
    @State private var slept = false
    @State private var ticks = 0
    @StateObject private var ticker = Ticker()
    let timer = Timer.publish(every: 0.05, on: .main, in: .common).autoconnect()
    var body: some View {
        HStack(spacing: 0) {
            (queued ? Color.green : Color.red).frame(width: 40, height: 40)
            (slept ? Color.green : Color.red).frame(width: 40, height: 40)
            (ticks >= 3 ? Color.green : Color.red).frame(width: 40, height: 40)
            (ticker.fired ? Color.green : Color.red).frame(width: 40, height: 40)
        }
        .onAppear {
            DispatchQueue.main.asyncAfter(deadline: .now() + 0.05) { queued = true }
            Task { @MainActor in
                try? await Task.sleep(nanoseconds: 50_000_000)
                slept = true
            }
        }
        .onReceive(timer) { _ in ticks += 1 }
    }
}
)swift";

void *load(const char *module, const char *source)
{
    return test::loadApp(QString::fromLatin1(module), QString::fromUtf8(source));
}

void *makeRoot(void *handle)
{
    auto factory = reinterpret_cast<void *(*)()>(dlsym(handle, "zentoro_make_root_view"));
    return factory ? factory() : nullptr;
}

bool isGreen(QColor c) { return c.green() > 150 && c.red() < 120; }
bool isRed(QColor c) { return c.red() > 200 && c.green() < 110; }

struct Window {
    QWidget container;
    KitHostView *view;
    Window(void *handle)
    {
        container.resize(400, 300);
        view = new KitHostView(handle, makeRoot(handle), &container);
        container.show();
    }
    QColor pixel(int x, int y) { return view->grab().toImage().pixelColor(x, y); }
};

} // namespace

TEST(KitHostView, ShowsTheAppAndRedrawsWhenAButtonChangesState)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = load("KitCounter", counterApp);
    ASSERT_NE(handle, nullptr);
    Window window(handle);
    ASSERT_EQ(window.view->error(), QString());
    EXPECT_EQ(window.view->geometry(), window.container.rect()) << "the view fills its parent";

    // The stack is centred: the square's top at (300 - 50 - 40 - 16) / 2.
    const int top = (300 - 50 - 40 - 16) / 2;
    EXPECT_TRUE(isRed(window.pixel(200, top + 25))) << window.pixel(200, top + 25).name().toStdString();
    QTest::mouseClick(window.view, Qt::LeftButton, {}, QPoint(200, top + 70));
    ASSERT_TRUE(test::spinUntil([&] { return isGreen(window.pixel(200, top + 25)); }));

    // It follows the container's size: the content moves to the new middle.
    window.container.resize(600, 300);
    EXPECT_EQ(window.view->width(), 600);
    EXPECT_TRUE(isGreen(window.pixel(300, top + 25)));
}

TEST(KitHostView, TwoViewsOfOneLibraryKeepTheirOwnState)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = load("KitCounterTwice", counterApp);
    ASSERT_NE(handle, nullptr);
    Window first(handle), second(handle);
    const int top = (300 - 50 - 40 - 16) / 2;
    QTest::mouseClick(first.view, Qt::LeftButton, {}, QPoint(200, top + 70));
    ASSERT_TRUE(test::spinUntil([&] { return isGreen(first.pixel(200, top + 25)); }));
    EXPECT_TRUE(isRed(second.pixel(200, top + 25)));
    // A view released while another of the same library lives leaves that one working.
    delete first.view;
    QTest::mouseClick(second.view, Qt::LeftButton, {}, QPoint(200, top + 70));
    EXPECT_TRUE(test::spinUntil([&] { return isGreen(second.pixel(200, top + 25)); }));
}

TEST(KitHostView, TextFieldsAreNativeAndTypingReachesTheBinding)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = load("KitField", fieldApp);
    ASSERT_NE(handle, nullptr);
    Window window(handle);
    window.view->grab();
    auto fields = window.view->findChildren<QLineEdit *>();
    ASSERT_EQ(fields.size(), 1);
    QLineEdit *field = fields.first();
    EXPECT_EQ(field->placeholderText(), QStringLiteral("Name"));
    EXPECT_EQ(field->width(), 200);
    const int top = (300 - 100 - field->height()) / 2;
    QTest::keyClicks(field, QStringLiteral("abc"));
    EXPECT_TRUE(test::spinUntil([&] { return isGreen(window.pixel(200, top + 25)); }));
    EXPECT_TRUE(isRed(window.pixel(200, top + 75)));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(test::spinUntil([&] { return isGreen(window.pixel(200, top + 75)); }));
    EXPECT_EQ(field->text(), QStringLiteral("abc"));
}

TEST(KitHostView, MainQueueTasksTimersAndPublishersFireInTheQtLoop)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = load("KitClock", clockApp);
    ASSERT_NE(handle, nullptr);
    Window window(handle);
    const auto all = [&] {
        const QImage image = window.view->grab().toImage();
        for (int x : {140, 180, 220, 260})
            if (!isGreen(image.pixelColor(x, 150)))
                return false;
        return true;
    };
    EXPECT_TRUE(test::spinUntil(all, std::chrono::seconds(5)));
}
