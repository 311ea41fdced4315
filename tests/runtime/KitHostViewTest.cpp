#include "KitTestSupport.h"

#include "support/Await.h"

#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

using namespace zentoro;

namespace {

// Apps written as a model writes them. Each shows its state as coloured squares, so a
// test reads the state from the pixels the way a user sees it.
const char *counterApp = R"swift(
import SwiftUI

struct AppRoot: View {
    @State private var count = 0
    @State private var name = ""
    var body: some View {
        VStack(spacing: 0) {
            (count == 0 ? Color.red : Color.green).frame(width: 100, height: 50)
            (name == "abc" ? Color.green : Color.red).frame(width: 100, height: 50)
            Button { count += 1 } label: { Color.blue.frame(width: 80, height: 40) }
                .buttonStyle(.plain)
            TextField("Name", text: $name).onSubmit { count += 1 }.frame(width: 200)
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

bool isGreen(QColor c)
{
    return c.green() > 150 && c.red() < 120;
}
bool isRed(QColor c)
{
    return c.red() > 200 && c.green() < 110;
}

struct Window : test::KitWindow {
    explicit Window(void *handle) : KitWindow(handle, {400, 300}) {}
    QColor pixel(int x, int y) const { return image().pixelColor(x, y); }
};

} // namespace

TEST(KitHostView, ShowsTheAppAndRedrawsWhenAButtonOrTypingChangesStateInThatViewAlone)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = load("KitCounter", counterApp);
    ASSERT_NE(handle, nullptr);
    Window window(handle), second(handle);
    ASSERT_EQ(window.view->error(), QString());
    EXPECT_EQ(window.view->geometry(), window.container.rect()) << "the view fills its parent";
    second.image();
    const auto fields = second.view->findChildren<QLineEdit *>();
    ASSERT_EQ(fields.size(), 1) << "text fields are native";
    QLineEdit *field = fields.first();
    EXPECT_EQ(field->placeholderText(), QStringLiteral("Name"));
    EXPECT_EQ(field->width(), 200);

    // The stack is centred: the count's square, the name's square, the button, the field.
    const int top = (300 - 140 - field->height()) / 2;
    EXPECT_TRUE(isRed(window.pixel(200, top + 25))) << window.pixel(200, top + 25).name().toStdString();
    window.click(QPoint(200, top + 120));
    ASSERT_TRUE(test::spinUntil([&] { return isGreen(window.pixel(200, top + 25)); }));
    EXPECT_TRUE(isRed(second.pixel(200, top + 25))) << "a second view of the library keeps its own state";

    // It follows the container's size: the content moves to the new middle.
    window.container.resize(600, 300);
    EXPECT_EQ(window.view->width(), 600);
    EXPECT_TRUE(isGreen(window.pixel(300, top + 25)));

    // A view released while another of the same library lives leaves that one working: typing
    // reaches its binding, and Return submits.
    delete window.view;
    QTest::keyClicks(field, QStringLiteral("abc"));
    EXPECT_TRUE(test::spinUntil([&] { return isGreen(second.pixel(200, top + 75)); }));
    EXPECT_TRUE(isRed(second.pixel(200, top + 25)));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(test::spinUntil([&] { return isGreen(second.pixel(200, top + 25)); }));
    EXPECT_EQ(field->text(), QStringLiteral("abc"));
}

TEST(KitHostView, MainQueueTasksTimersAndPublishersFireInTheQtLoop)
{
    ZENTORO_REQUIRE_SWIFTC();
    void *handle = load("KitClock", clockApp);
    ASSERT_NE(handle, nullptr);
    Window window(handle);
    const auto all = [&] {
        const QImage image = window.image();
        return std::ranges::all_of(std::array{140, 180, 220, 260},
                                   [&](int x) { return isGreen(image.pixelColor(x, 150)); });
    };
    EXPECT_TRUE(test::spinUntil(all, std::chrono::seconds(5)));
}
