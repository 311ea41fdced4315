// The atomic write against the disk: the order of its system calls (what a power cut
// depends on) and what a full or refusing disk leaves behind.
#include "core/AtomicFile.h"
#include "support/DiskFaults.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <cerrno>

using namespace zentoro;
using test::DiskFaults;

namespace {

QStringList leftovers(const QString &folder)
{
    return QDir(folder).entryList({QStringLiteral("*.tmp-*")}, QDir::Files | QDir::Hidden);
}

} // namespace

TEST(AtomicFile, AFlushedWriteReachesTheDiskBeforeAndAfterItsRenameAndAWrittenOneLeavesThatToAThread)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("state.json"));
    {
        DiskFaults disk;
        ASSERT_FALSE(AtomicFile::write(path, "{}").has_value());
        EXPECT_EQ(disk.calls(), (std::vector<std::string>{"flush file", "rename", "flush folder"}));
    }
    {
        DiskFaults disk;
        ASSERT_FALSE(AtomicFile::write(path, "{\"a\":1}", 0644, AtomicFile::Durability::Written).has_value());
        EXPECT_EQ(disk.calls(), std::vector<std::string>{"rename"});
        AtomicFile::flushInBackground(path);
        QThreadPool::globalInstance()->waitForDone();
        EXPECT_EQ(disk.calls(), (std::vector<std::string>{"rename", "flush file", "flush folder"}));
    }
    EXPECT_EQ(test::readText(path), QStringLiteral("{\"a\":1}"));
}

TEST(AtomicFile, AFullOrRefusingDiskLeavesTheOldFileWholeAndNothingBesideItUntilSpaceReturns)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("openai-key"));
    ASSERT_FALSE(AtomicFile::write(path, "old", 0600).has_value());
    for (const int error : {ENOSPC, EDQUOT, EROFS}) {
        DiskFaults disk(error == EROFS ? 0 : error, error == EROFS ? error : 0);
        const std::optional<QString> failure = AtomicFile::write(path, "new", 0600);
        ASSERT_TRUE(failure.has_value()) << error;
        EXPECT_EQ(AtomicFile::isDiskFull(*failure), error != EROFS) << failure->toStdString();
        EXPECT_EQ(test::readText(path), QStringLiteral("old"));
        EXPECT_EQ(leftovers(folder.path()), QStringList());
    }
    EXPECT_FALSE(AtomicFile::write(path, "new", 0600).has_value());
    EXPECT_EQ(test::readText(path), QStringLiteral("new"));
}
