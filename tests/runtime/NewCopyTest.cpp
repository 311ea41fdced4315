#include "runtime/NewCopy.h"
#include "runtime/DesktopEntry.h"
#include "runtime/Workspace.h"

#include "core/Failure.h"
#include "support/Files.h"
#include "support/RecordingProgram.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zentoro;
using test::readText;
using test::waitForLine;
using test::writeFile;

namespace {

// The output and status of a tool the test depends on; scripts/install-deps installs it.
std::pair<int, QString> run(const QString &tool, const QStringList &arguments)
{
    const QString path = QStandardPaths::findExecutable(tool);
    if (path.isEmpty())
        return {-1, tool + QStringLiteral(" isn't installed (scripts/install-deps installs it).")};
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(path, arguments);
    process.waitForFinished(30000);
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

QString failureOf(const QString &name, const NewCopy::Places &places)
{
    try {
        NewCopy::make(name, places);
    } catch (const Failure &failure) {
        return failure.message;
    }
    return QStringLiteral("(made)");
}

// A user's home of its own, with the program in a folder apart, standing in as a script that
// records how it was started.
class NewCopyTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        savedHome_ = qgetenv("HOME");
        qputenv("HOME", home().toUtf8());
        test::writeRecordingProgram(program(), log());
        places = {program(), home() + QStringLiteral("/.local/bin"), DesktopEntry::userFolder(),
                  QStringLiteral("dev.vantu.zentoro")};
    }
    void TearDown() override
    {
        qputenv("HOME", savedHome_);
        QDir(DesktopEntry::userFolder()).removeRecursively();
    }

    QString home() const { return folder_.path() + QStringLiteral("/home"); }
    QString program() const { return folder_.path() + QStringLiteral("/opt/zentoro"); }
    QString log() const { return folder_.path() + QStringLiteral("/started.log"); }

    QTemporaryDir folder_;
    QByteArray savedHome_;
    NewCopy::Places places;
};

TEST_F(NewCopyTest, MakesLinkedCopiesWhoseEntriesStartThemUnderTheirNames)
{
    const QStringList names{QStringLiteral("Kitchen Timer"), QStringLiteral("Café Ölçer"),
                            QStringLiteral("Tom's $5 \"Deal\" \\ok `now`")};
    NewCopy::Copy copy;
    for (const QString &name : names) {
        SCOPED_TRACE(name.toStdString());
        copy = NewCopy::make(name, places);
        EXPECT_EQ(copy.link, home() + QStringLiteral("/.local/bin/") + name);
        EXPECT_EQ(QFileInfo(copy.link).symLinkTarget(), program());
        EXPECT_EQ(Workspace::nameFromExecutable(copy.link, {}), name);

        const auto [status, problems] = run(QStringLiteral("desktop-file-validate"), {copy.entry});
        EXPECT_EQ(status, 0) << problems.toStdString();
        if (!name.contains(u'\\'))
            EXPECT_TRUE(readText(copy.entry).contains(QStringLiteral("\nName=") + name + u'\n'));
        // A launcher reads the Exec line back into the link's path.
        run(QStringLiteral("gio"), {QStringLiteral("launch"), copy.entry});
        EXPECT_TRUE(waitForLine(log(), copy.link)) << readText(log()).toStdString();

        EXPECT_EQ(DesktopEntry::desktopFileNameFor(name), QFileInfo(copy.entry).completeBaseName());
        EXPECT_TRUE(NewCopy::refusal(name, places));
    }
    EXPECT_EQ(DesktopEntry::desktopFileNameFor(QStringLiteral("Never Made")), QStringLiteral("dev.vantu.zentoro"));

    QFile::remove(log());
    EXPECT_FALSE(NewCopy::start(copy));
    EXPECT_TRUE(waitForLine(log(), copy.link));
}

TEST_F(NewCopyTest, LinksBesideAWritableProgramToTheProgramItself)
{
    // Started through another copy's link: the new link leads to the program, not to that link.
    const QString other = folder_.path() + QStringLiteral("/apps/Other");
    QDir().mkpath(QFileInfo(other).path());
    QFile::link(program(), other);
    const NewCopy::Places found = NewCopy::forProgram(other, QStringLiteral("icon"));
    EXPECT_EQ(found.program, program());
    EXPECT_EQ(found.linkFolder, QFileInfo(other).path());
    EXPECT_EQ(found.entryFolder, DesktopEntry::userFolder());
}

TEST_F(NewCopyTest, RefusesNamesItCannotUseAndLeavesNothingBehind)
{
    QDir().mkpath(Workspace::forName(QStringLiteral("Existing")).root);
    writeFile(places.linkFolder + QStringLiteral("/Taken"), "#!/bin/sh\n");
    const QList<std::pair<QString, QString>> cases{
        {QString(), QStringLiteral("Type a name for the new app.")},
        {QStringLiteral("   "), QStringLiteral("Type a name for the new app.")},
        {QStringLiteral("Kitchen/Timer"), QStringLiteral("A name can't contain “/”. Choose a name without it.")},
        {QStringLiteral("100% Juice"), QStringLiteral("A name can't contain “%”")},
        {QStringLiteral("St. Louis"), QStringLiteral("“St. Louis” would open as “St”")},
        {QStringLiteral("Existing"), QStringLiteral("There is already an app named “Existing”.")},
        {QStringLiteral("Taken"), QStringLiteral("“%1/Taken” already exists.").arg(places.linkFolder)},
        {QStringLiteral("sh"), QStringLiteral("“sh” is already the name of a command")},
    };
    for (const auto &[name, words] : cases) {
        SCOPED_TRACE(name.toStdString());
        const auto refusal = NewCopy::refusal(name, places);
        ASSERT_TRUE(refusal);
        EXPECT_TRUE(refusal->startsWith(words)) << refusal->toStdString();
        EXPECT_EQ(failureOf(name, places), *refusal);
    }
    EXPECT_EQ(QDir(places.linkFolder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList{"Taken"});

    // An entry that can't be written takes its link away again.
    writeFile(folder_.path() + QStringLiteral("/file"), "");
    NewCopy::Places broken = places;
    broken.entryFolder = folder_.path() + QStringLiteral("/file/applications");
    EXPECT_TRUE(failureOf(QStringLiteral("Kitchen Timer"), broken)
                    .startsWith(QStringLiteral("Couldn't add “Kitchen Timer” to the applications menu")));
    EXPECT_FALSE(QFileInfo(places.linkFolder + QStringLiteral("/Kitchen Timer")).isSymLink());
}

} // namespace
