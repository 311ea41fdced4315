// The hosted UI kit through the Qt host:
// (1) a @State change in a tree of 1,000 views, from the click to the painted frame
//     (goal: median under half of a 16.7 ms frame);
// (2) scrolling a LazyVStack of 10,000 rows against one of 100 rows (goal: frame time ratio
//     near 1.0);
// (3) the kit's build for this compiler (its first build when the cache is fresh);
// (4) resident memory of the to-do reference app, and what loading it added.
// With `show <App.swift> <image.png> [width height]` it shows an app in a window instead and
// saves what the window shows once the app has settled.
#include "Measure.h"
#include "runtime/Kit.h"
#include "runtime/KitHostView.h"
#include "runtime/Shell.h"
#include "runtime/Toolchain.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTimer>
#include <QWheelEvent>

#include <QCoroTask>

#include <algorithm>
#include <cstdio>
#include <dlfcn.h>
#include <unistd.h>
#include <vector>

using namespace zentoro;
using namespace zentoro::bench;

namespace {

constexpr double frameMs = 1000.0 / 60.0;

void settle(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// Compiles `source` (which defines AppRoot) with an entry file like the one an app build
// generates, optimised like a version, and opens the library.
void *loadApp(const QString &swiftc, const Kit::Build &kit, const QString &folder, const QString &module,
              const QString &source)
{
    const QString dir = folder + u'/' + module;
    QDir().mkpath(dir);
    QFile entry(dir + QStringLiteral("/ZentoroEntry.swift")), app(dir + QStringLiteral("/App.swift"));
    entry.open(QIODevice::WriteOnly);
    entry.write(
        "import SwiftUI\n"
        "enum AppInfo { static let name = \"Kit Bench\" }\n"
        "extension UserDefaults { static let app = UserDefaults(suiteName: \"dev.vantu.zentoro.app.Kit Bench\")! }\n"
        "@_cdecl(\"zentoro_make_root_view\")\n"
        "public func zentoro_make_root_view() -> UnsafeMutableRawPointer "
        "{ ZentoroHosting.makeRootView(AppRoot().defaultAppStorage(.app), appName: \"Kit Bench\") }\n");
    entry.close();
    app.open(QIODevice::WriteOnly);
    app.write(source.toUtf8());
    app.close();
    const QString output = dir + QStringLiteral("/lib") + module + QStringLiteral(".so");
    QStringList arguments{QStringLiteral("-emit-library"),
                          QStringLiteral("-parse-as-library"),
                          QStringLiteral("-module-name"),
                          module,
                          QStringLiteral("-swift-version"),
                          QStringLiteral("5"),
                          QStringLiteral("-module-cache-path"),
                          dir + QStringLiteral("/ModuleCache"),
                          QStringLiteral("-o"),
                          output};
    arguments += kit.arguments;
    arguments << entry.fileName() << app.fileName();
    const Shell::Result result = await(Shell::run(swiftc, arguments, dir));
    if (result.status != 0) {
        std::fprintf(stderr, "%s did not compile:\n%s\n", qPrintable(module), qPrintable(result.output));
        return nullptr;
    }
    void *handle = dlopen(output.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        std::fprintf(stderr, "%s\n", dlerror());
    return handle;
}

// A hosted root view in a window of its own, with a count of finished paints.
struct Window : QObject {
    QWidget container;
    KitHostView *view;
    int paints = 0;

    Window(void *handle, QSize size)
    {
        auto factory = reinterpret_cast<void *(*)()>(dlsym(handle, "zentoro_make_root_view"));
        container.resize(size);
        view = new KitHostView(handle, factory(), &container);
        view->installEventFilter(this);
        container.show();
        settle(300);
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
    // Runs events until the paint that `action` asked for is done; the milliseconds it took.
    template <typename Action>
    double untilPainted(Action action)
    {
        const int before = paints;
        QElapsedTimer clock;
        clock.start();
        action();
        while (paints == before) {
            if (clock.elapsed() > 3000) {
                std::printf("no frame was painted after the action: figures below are not valid\n");
                return 0;
            }
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
        }
        return clock.nsecsElapsed() / 1e6;
    }
    void send(QEvent::Type type, QPointF at, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, at, view->mapToGlobal(at), Qt::LeftButton, buttons, {});
        QApplication::sendEvent(view, &event);
    }
    void click(QPointF at)
    {
        send(QEvent::MouseButtonPress, at, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, at, Qt::NoButton);
    }
    void wheel(QPointF at, int pixels)
    {
        QWheelEvent event(at, view->mapToGlobal(at), QPoint(0, -pixels), QPoint(0, -pixels * 120 / 48), Qt::NoButton,
                          {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view, &event);
    }
};

// 50 rows of 20 cells: 1,000 texts in 50 stacks, under a button whose count changes.
const char *const thousandViews = R"swift(
import SwiftUI
struct AppRoot: View {
    @State private var taps = 0
    var body: some View {
        VStack(spacing: 0) {
            Button("Tapped \(taps) times") { taps += 1 }
                .frame(height: 28)
            ForEach(0..<50, id: \.self) { row in
                HStack(spacing: 0) {
                    ForEach(0..<20, id: \.self) { column in
                        Text("\(row * 20 + column)")
                            .font(.system(size: 9))
                            .frame(maxWidth: .infinity)
                    }
                }
            }
        }
        .frame(maxHeight: .infinity, alignment: .top)
    }
}
)swift";

QString lazyRows(int count)
{
    return QStringLiteral(R"swift(
import SwiftUI
struct AppRoot: View {
    var body: some View {
        ScrollView {
            LazyVStack(alignment: .leading, spacing: 4) {
                ForEach(0..<%1, id: \.self) { row in
                    HStack {
                        Image(systemName: "circle")
                        Text("Row \(row)")
                        Spacer()
                        Text("\(row * 3)").foregroundStyle(.secondary)
                    }
                    .padding(.horizontal)
                }
            }
        }
    }
}
)swift")
        .arg(count);
}

QString referenceApp(const QString &name)
{
    // bench/run works from the repository's top folder.
    QFile file(QStringLiteral("tests/kit_apps/%1/App.swift").arg(name));
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

// Frame times of scrolling down and back up again, each step by one wheel notch; both lists
// are longer than the steps go, so every step scrolls and paints.
std::vector<double> scrollFrames(Window &window)
{
    std::vector<double> frames;
    for (int pass = 0; pass < 2; ++pass)
        for (int step = 0; step < 25; ++step)
            frames.push_back(window.untilPainted([&] { window.wheel({200, 300}, pass == 0 ? 48 : -48); }));
    return frames;
}

int show(const QString &swiftc, const Kit::Build &kit, const QString &folder, char **argv, int argc)
{
    QFile file(QString::fromLocal8Bit(argv[2]));
    file.open(QIODevice::ReadOnly);
    void *handle = loadApp(swiftc, kit, folder, QStringLiteral("Shown"), QString::fromUtf8(file.readAll()));
    if (!handle)
        return 1;
    const QSize size = argc > 5 ? QSize(atoi(argv[4]), atoi(argv[5])) : QSize(800, 600);
    Window window(handle, size);
    window.container.setWindowTitle(QFileInfo(file).dir().dirName());
    settle(1500);
    return window.container.grab().save(QString::fromLocal8Bit(argv[3])) ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const bool showing = argc > 3 && QByteArray(argv[1]) == "show";
    if (!showing)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const Toolchain toolchain = await(Toolchain::detect());
    const Toolchain::Compiler *compiler = toolchain.compiler();
    if (!compiler) {
        std::printf("No Swift compiler found: kit benchmark skipped.\n");
        return 0;
    }
    QElapsedTimer clock;
    clock.start();
    const Kit::Build kit = await(Kit::ensureBuilt(TaskHandle(), compiler->swiftc, compiler->version));
    if (!kit.ok()) {
        std::printf("The kit did not build: %s\n", qPrintable(kit.error));
        return 1;
    }
    const double kitSeconds = clock.elapsed() / 1000.0;
    QTemporaryDir folder;
    if (showing)
        return show(compiler->swiftc, kit, folder.path(), argv, argc);

    std::printf("== UI kit: a state change among 1,000 views, lazy scrolling, the to-do app's memory\n");
    if (kitSeconds > 5)
        std::printf("kit first build: %.1f s\n", kitSeconds);
    else
        std::printf("kit first build: already in the cache (%.2f s); the build benchmark times a fresh one\n",
                    kitSeconds);

    {
        void *handle = loadApp(compiler->swiftc, kit, folder.path(), QStringLiteral("Thousand"),
                               QString::fromUtf8(thousandViews));
        if (!handle)
            return 1;
        Window window(handle, {900, 700});
        std::vector<double> frames;
        for (int tap = 0; tap < 41; ++tap)
            frames.push_back(window.untilPainted([&] { window.click({450, 14}); }));
        frames.erase(frames.begin());
        const double m = median(frames);
        std::printf("@State change in a 1,000-view tree, click to painted frame: median %.2f ms = %.0f%% of a "
                    "16.7 ms frame (goal < 50%%) %s\n",
                    m, 100 * m / frameMs, m < frameMs / 2 ? "ok" : "OVER");
    }

    {
        void *small = loadApp(compiler->swiftc, kit, folder.path(), QStringLiteral("Rows100"), lazyRows(100));
        void *large = loadApp(compiler->swiftc, kit, folder.path(), QStringLiteral("Rows10000"), lazyRows(10000));
        if (!small || !large)
            return 1;
        Window smallWindow(small, {400, 600});
        const double few = median(scrollFrames(smallWindow));
        Window largeWindow(large, {400, 600});
        const double many = median(scrollFrames(largeWindow));
        std::printf("LazyVStack scrolling, median frame: 100 rows %.2f ms, 10,000 rows %.2f ms: ratio %.2f "
                    "(goal near 1.0) %s\n",
                    few, many, many / few, many / few < 1.5 ? "ok" : "OVER");
    }

    {
        const double before = residentMiB();
        void *handle = loadApp(compiler->swiftc, kit, folder.path(), QStringLiteral("TodoList"),
                               referenceApp(QStringLiteral("TodoList")));
        if (!handle)
            return 1;
        Window window(handle, {800, 600});
        settle(500);
        const double after = residentMiB();
        std::printf("to-do reference app: resident memory %.1f MiB, of which loading and showing it added %.1f MiB\n",
                    after, after - before);
    }
    return 0;
}
