#include "KitTestSupport.h"

#include "support/Await.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QThreadPool>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <iostream>
#include <memory>

using namespace zentoro;

// Apps written from a user's request alone, as ordinary SwiftUI, by writers who never saw the
// kit: half of them had the kit's list in view, as the model has, half did not. Each is
// compiled unchanged, loaded, left running for four seconds and must then show something.
// An app that does not compile must say, in the compiler's words, what is unavailable.
namespace {

struct App {
    QString name;
    QStringList files;
    QString library;
    QString error;
};

QList<App> appsIn(const QString &half)
{
    const QDir folder(QStringLiteral(ZENTORO_TESTS_DIR "/kit_blind/") + half);
    QList<App> apps;
    for (const QString &name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QDir app(folder.filePath(name));
        App found{name, {}, {}, {}};
        for (const QString &file : app.entryList({QStringLiteral("*.swift")}, QDir::Files, QDir::Name))
            found.files << app.filePath(file);
        apps << found;
    }
    return apps;
}

QString moduleName(const QString &half, const QString &app)
{
    QString name = QStringLiteral("Blind_") + half + u'_' + app;
    for (QChar &c : name)
        if (!c.isLetterOrNumber())
            c = u'_';
    return name;
}

// Two compilers at a time, as many as the machine has cores for.
void compileAll(const QString &half, QList<App> &apps)
{
    auto next = std::make_shared<qsizetype>(0);
    auto worker = [&apps, half, next]() -> QCoro::Task<> {
        while (*next < apps.size()) {
            App &app = apps[(*next)++];
            app.library = co_await test::buildAppFiles(moduleName(half, app.name), app.files, &app.error);
        }
    };
    auto both = [&]() -> QCoro::Task<> {
        auto first = worker(), second = worker();
        co_await first;
        co_await second;
    };
    test::await(both());
}

// Whether the app, loaded in a child process, still shows more than a plain background after
// four seconds of its timers and tasks; a crash counts as a failure, not a fatal error.
pid_t startRunning(const QString &library)
{
    QThreadPool::globalInstance()->waitForDone();
    const pid_t child = fork();
    if (child != 0)
        return child;
    void *handle = dlopen(library.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        _exit(2);
    const test::KitWindow window(handle, {800, 600});
    if (!window.view->error().isEmpty())
        _exit(3);
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 4000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    const QImage image = window.image();
    const QRgb background = image.pixel(0, 0);
    int different = 0;
    for (int y = 0; y < image.height(); y += 2)
        for (int x = 0; x < image.width(); x += 2)
            different += image.pixel(x, y) != background;
    _exit(different > 40 ? 0 : 4);
}

void checkHalf(const QString &half)
{
    QList<App> apps = appsIn(half);
    ASSERT_EQ(apps.size(), 30);
    compileAll(half, apps);

    // Built apps run side by side, a few at a time: most of their four seconds is waiting.
    QStringList notRunning;
    QList<App *> built;
    for (App &app : apps)
        if (!app.library.isEmpty())
            built << &app;
    constexpr int together = 6;
    for (qsizetype start = 0; start < built.size(); start += together) {
        QList<std::pair<App *, pid_t>> children;
        for (qsizetype i = start; i < std::min(built.size(), start + together); ++i)
            children.append({built[i], startRunning(built[i]->library)});
        for (const auto &[app, child] : children) {
            int status = 0;
            waitpid(child, &status, 0);
            if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
                notRunning << app->name;
        }
    }

    int working = 0;
    for (const App &app : apps) {
        if (app.library.isEmpty()) {
            std::cout << "  does not compile: " << app.name.toStdString() << "\n    "
                      << app.error.section(u'\n', 0, 1).toStdString() << "\n";
            EXPECT_TRUE(app.error.contains(QStringLiteral("unavailable")))
                << app.name.toStdString() << " fails without saying what is unavailable:\n"
                << app.error.left(2000).toStdString();
        } else if (notRunning.contains(app.name)) {
            std::cout << "  compiles but crashed or showed nothing: " << app.name.toStdString() << "\n";
        } else {
            ++working;
        }
    }
    std::cout << "Blind corpus, " << half.toStdString() << ": " << working << " of " << apps.size()
              << " apps compile unchanged, run four seconds and render\n";
    EXPECT_GE(working, 27) << "at least nine in ten";
    EXPECT_TRUE(notRunning.isEmpty()) << notRunning.join(u' ').toStdString();
}

} // namespace

TEST(KitBlindCorpus, AppsWrittenWithTheKitListInView)
{
    ZENTORO_REQUIRE_SWIFTC();
    checkHalf(QStringLiteral("with-list"));
}

TEST(KitBlindCorpus, AppsWrittenAsOrdinarySwiftUI)
{
    ZENTORO_REQUIRE_SWIFTC();
    checkHalf(QStringLiteral("without-list"));
}
