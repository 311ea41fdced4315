#include "KitTestSupport.h"

#include "support/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QThreadPool>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace zentoro;

// Small programs of the kind tutorials and models write, each compiled unchanged against the
// kit and shown for one frame. The share that compiles and renders must stay at 85% or more.
namespace {

// Loads the library and paints one frame in a child process, so a crash is counted, not fatal.
bool rendersWithoutCrash(const QString &library)
{
    // The raster engine hands large fills to the global pool's idle workers; a forked child has
    // none of those threads and would wait on them for ever, so the parent joins them first.
    QThreadPool::globalInstance()->waitForDone();
    const pid_t child = fork();
    if (child == 0) {
        void *handle = dlopen(library.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL);
        if (!handle)
            _exit(2);
        const test::KitWindow window(handle, {800, 600});
        _exit(!window.image().isNull() && window.view->error().isEmpty() ? 0 : 3);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

TEST(KitCorpus, MostProgramsCompileUnchangedAndRender)
{
    ZENTORO_REQUIRE_SWIFTC();
    const QDir folder(QStringLiteral(ZENTORO_TESTS_DIR "/kit_corpus"));
    const QStringList programs = folder.entryList({QStringLiteral("*.swift")}, QDir::Files, QDir::Name);
    ASSERT_GE(programs.size(), 20);
    int working = 0;
    for (const QString &name : programs) {
        QString error;
        const QString module = QStringLiteral("Corpus") + QFileInfo(name).baseName();
        const QString library = test::buildApp(module, test::readText(folder.filePath(name)), &error);
        if (library.isEmpty()) {
            std::cout << "  does not compile: " << name.toStdString() << "\n    "
                      << error.section(u'\n', 0, 2).toStdString() << "\n";
            continue;
        }
        if (!rendersWithoutCrash(library)) {
            std::cout << "  crashed or failed to render: " << name.toStdString() << "\n";
            continue;
        }
        ++working;
    }
    const double share = 100.0 * working / programs.size();
    std::cout << "Kit corpus: " << working << " of " << programs.size() << " programs compile unchanged and render ("
              << share << "%)\n";
    EXPECT_GE(share, 85.0);
}
