#include "runtime/Workspace.h"

#include "support/Files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <unistd.h>

using zentoro::Workspace;
using zentoro::test::writeFile;

namespace {

// When started with this variable, the test program is only a second process of a copy:
// it tries the copy's lock before any test runs, says "held" or "busy", and while it
// holds the lock it waits to be killed.
const char *const lockRootVariable = "ZENTORO_TEST_HOLD_LOCK";

const bool lockHolder = [] {
    const QByteArray root = qgetenv(lockRootVariable);
    if (root.isEmpty())
        return false;
    const bool held = Workspace{QStringLiteral("Holder"), QString::fromLocal8Bit(root)}.lock();
    std::fputs(held ? "held\n" : "busy\n", stdout);
    std::fflush(stdout);
    if (!held)
        ::_exit(0);
    for (;;)
        ::pause();
}();

QString failureOf(const std::function<void()> &work)
{
    try {
        work();
    } catch (const Workspace::Failure &failure) {
        return failure.message;
    }
    return QStringLiteral("(no failure)");
}

class WorkspaceTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    Workspace workspace{QStringLiteral("Kitchen Timer"), dir.path() + QStringLiteral("/Apps/Kitchen Timer")};

    QString source(const QString &relative) const { return workspace.sources() + u'/' + relative; }
    QStringList relativeFiles(std::optional<QStringList> files = std::nullopt) const
    {
        QStringList relative;
        for (const QString &file : files.value_or(workspace.files()))
            relative.append(workspace.relativePath(file));
        return relative;
    }
};

} // namespace

TEST(WorkspaceIdentity, NameComesFromTheStartedFileAndKeepsCopiesApart)
{
    EXPECT_EQ(Workspace::nameFromExecutable(QStringLiteral("/opt/apps/Kitchen Timer"), {}), "Kitchen Timer");
    EXPECT_EQ(Workspace::nameFromExecutable(QStringLiteral("./zentoro.bin"), {}), "zentoro");
    EXPECT_EQ(Workspace::nameFromExecutable(QStringLiteral("./zentoro"), QStringLiteral("/home/u/Notes.AppImage")),
              "Notes");

    const Workspace timer = Workspace::forName(QStringLiteral("Kitchen Timer"));
    const Workspace notes = Workspace::forName(QStringLiteral("Notes"));
    EXPECT_EQ(timer.root, Workspace::support() + "/Apps/Kitchen Timer");
    EXPECT_EQ(timer.defaultsSuite(), "dev.vantu.zentoro.app.Kitchen Timer");

    timer.prepare();
    notes.prepare();
    EXPECT_TRUE(QFileInfo::exists(timer.sources() + "/AppRoot.swift"));
    EXPECT_TRUE(QFileInfo::exists(notes.sources() + "/AppRoot.swift"));
    QFile::remove(timer.sources() + "/AppRoot.swift");
    EXPECT_TRUE(QFileInfo::exists(notes.sources() + "/AppRoot.swift"));
}

TEST_F(WorkspaceTest, PrepareMakesTheFoldersAndSeedsOnlyWhenSourcesAreMissing)
{
    writeFile(workspace.root, "a file where the folder belongs");
    const QString message = failureOf([&] { workspace.prepare(); });
    EXPECT_TRUE(message.startsWith("Couldn't create the folder")) << message.toStdString();
    QFile::remove(workspace.root);

    workspace.prepare();
    for (const QString &folder : {workspace.versions(), workspace.logs(), workspace.data(), workspace.build()})
        EXPECT_TRUE(QFileInfo(folder).isDir()) << folder.toStdString();
    // The seed's files come from read-only resources but must be the user's to edit.
    EXPECT_TRUE(QFileInfo(source(QStringLiteral("AppRoot.swift"))).isWritable());

    // An emptied source folder is the user's choice and stays empty.
    QDir(workspace.sources()).removeRecursively();
    QDir().mkpath(workspace.sources());
    workspace.prepare();
    EXPECT_TRUE(workspace.files().isEmpty());
}

TEST_F(WorkspaceTest, ReplaceSourcesSwapsTheWholeTreeAndNeverLosesIt)
{
    writeFile(source(QStringLiteral("Old.swift")), "x");
    const QString incoming = dir.path() + "/incoming";
    writeFile(incoming + "/New.swift", "new");
    writeFile(incoming + "/Views/Row.swift", "x");
    writeFile(incoming + "/.notes", "x");

    workspace.replaceSources(incoming);
    EXPECT_EQ(relativeFiles(), QStringList({"New.swift", "Views/Row.swift"}));
    EXPECT_TRUE(QFileInfo::exists(source(QStringLiteral(".notes"))));

    const QString message = failureOf([&] { workspace.replaceSources(dir.path() + "/nowhere"); });
    EXPECT_TRUE(message.startsWith("Couldn't copy")) << message.toStdString();
    EXPECT_EQ(relativeFiles(), QStringList({"New.swift", "Views/Row.swift"}));

    workspace.installSeed();
    EXPECT_TRUE(relativeFiles().contains("AppRoot.swift"));
    EXPECT_FALSE(relativeFiles().contains("New.swift"));

    // A process ended between the swap's two renames: the next start completes the swap when
    // the new tree was whole, puts the old one back otherwise, and never reseeds.
    const auto endedMidSwap = [&](bool incomingStands) {
        QDir(workspace.sources()).removeRecursively();
        writeFile(workspace.outgoingSources() + "/Old.swift", "old");
        if (incomingStands)
            writeFile(workspace.incomingSources() + "/New.swift", "new");
        workspace.prepare();
        EXPECT_FALSE(QFileInfo::exists(workspace.outgoingSources()));
        EXPECT_FALSE(QFileInfo::exists(workspace.incomingSources()));
        return relativeFiles();
    };
    EXPECT_EQ(endedMidSwap(true), QStringList{"New.swift"});
    EXPECT_EQ(endedMidSwap(false), QStringList{"Old.swift"});
    // Ended after the swap, or while copying: the sources in place stay.
    writeFile(workspace.outgoingSources() + "/Old.swift", "old");
    writeFile(workspace.incomingSources() + "/Half.swift", "half");
    workspace.prepare();
    EXPECT_EQ(relativeFiles(), QStringList{"Old.swift"});
    EXPECT_FALSE(QFileInfo::exists(workspace.outgoingSources()));
    EXPECT_FALSE(QFileInfo::exists(workspace.incomingSources()));
}

TEST_F(WorkspaceTest, FilesAreRegularVisibleFilesInPlainTextOrder)
{
    for (const char *name : {"b/c.swift", "a.swift", "A.swift", "README.md", "Notes.SWIFT", ".hidden.swift",
                             ".build/x.swift", "b/.cache/y.swift"})
        writeFile(source(QString::fromLatin1(name)), "x");
    QDir().mkpath(source(QStringLiteral("Empty")));
    QFile::link(source(QStringLiteral("a.swift")), source(QStringLiteral("link.swift")));

    EXPECT_EQ(relativeFiles(), QStringList({"A.swift", "Notes.SWIFT", "README.md", "a.swift", "b/c.swift"}));
    EXPECT_EQ(relativeFiles(workspace.swiftFiles()), QStringList({"A.swift", "a.swift", "b/c.swift"}));
}

TEST_F(WorkspaceTest, ResolveStaysInsideTheSourceFolder)
{
    EXPECT_EQ(workspace.resolve(QStringLiteral("a/../b.swift")), source(QStringLiteral("b.swift")));
    EXPECT_EQ(workspace.resolve(QStringLiteral(" \tViews/./Row.swift\n")), source(QStringLiteral("Views/Row.swift")));
    // The folder itself is no file either.
    for (const char *path : {"../x", " a/../../x\n", ".", "sub/.."}) {
        EXPECT_EQ(failureOf([&] { workspace.resolve(QString::fromLatin1(path)); }),
                  QString::fromLatin1(path).trimmed() + " is outside the source folder.");
    }
    for (const char *path : {"", "   ", "/etc/hosts", "~/x", " \n/etc/hosts"}) {
        EXPECT_EQ(failureOf([&] { workspace.resolve(QString::fromLatin1(path)); }),
                  "Use a path relative to the source folder, like \"AppRoot.swift\".")
            << path;
    }

    EXPECT_EQ(workspace.relativePath(workspace.sources() + "//Views/./Row.swift"), "Views/Row.swift");
    EXPECT_EQ(workspace.relativePath(workspace.root + "/Sources2/x"), workspace.root + "/Sources2/x");
}

TEST_F(WorkspaceTest, ResolveRefusesLinksThatLeadOut)
{
    const QString outside = dir.path() + "/outside";
    writeFile(outside + "/.bashrc", "keep me");
    writeFile(source(QStringLiteral("Views/Row.swift")), "x");
    QFile::link(outside, source(QStringLiteral("out")));
    QFile::link(outside + "/.bashrc", source(QStringLiteral("bashrc.swift")));
    QFile::link(dir.path() + "/missing", source(QStringLiteral("dangling")));
    QFile::link(source(QStringLiteral("Views")), source(QStringLiteral("Screens")));
    QFile::link(outside, source(QStringLiteral("Views/up")));

    // A link within the folder is fine, but not a second link behind it that leads out.
    EXPECT_EQ(workspace.resolve(QStringLiteral("Screens/Row.swift")), source(QStringLiteral("Screens/Row.swift")));
    for (const char *path : {"out/.bashrc", "out/new/File.swift", "bashrc.swift", "dangling", "Screens/up/.bashrc"}) {
        EXPECT_EQ(failureOf([&] { workspace.resolve(QString::fromLatin1(path)); }),
                  QString::fromLatin1(path) + " goes through a symbolic link that leads outside the source folder.");
    }
}

TEST_F(WorkspaceTest, LockKeepsASecondProcessOutUntilTheFirstDies)
{
    auto startHolder = [&](QProcess &process) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(lockRootVariable), workspace.root);
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--gtest_list_tests")});
        EXPECT_TRUE(process.waitForReadyRead(10000));
        return process.readLine().trimmed();
    };

    QProcess first;
    ASSERT_EQ(startHolder(first), "held");
    EXPECT_FALSE(workspace.lock());
    first.kill();
    ASSERT_TRUE(first.waitForFinished(10000));

    EXPECT_TRUE(workspace.lock());
    EXPECT_TRUE(workspace.lock()) << "taking a lock this process holds succeeds";
    QProcess second;
    EXPECT_EQ(startHolder(second), "busy");
    second.waitForFinished(10000);
}
