// The atomic write against the disk: the order of its system calls (what a power cut
// depends on) and what a full or refusing disk leaves behind. The calls are interposed
// here, in the test program, and only while a test asks for it.
#include "core/AtomicFile.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <cerrno>
#include <cstdarg>
#include <sys/stat.h>
#include <fcntl.h>
#include <unistd.h>

#include <mutex>
#include <string>
#include <vector>

using namespace zentoro;

namespace {

std::mutex callsMutex;
std::vector<std::string> calls;
bool recording = false;
int failWritesWith = 0;
int failOpensWith = 0;

template <typename Function>
Function real(const char *name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

void note(std::string call)
{
    std::lock_guard lock(callsMutex);
    if (recording)
        calls.push_back(std::move(call));
}

std::string kindOf(int descriptor)
{
    struct stat status {};
    fstat(descriptor, &status);
    return S_ISDIR(status.st_mode) ? "folder" : "file";
}

std::vector<std::string> recorded()
{
    std::lock_guard lock(callsMutex);
    return calls;
}

struct Interposed {
    Interposed()
    {
        std::lock_guard lock(callsMutex);
        calls.clear();
        recording = true;
    }
    ~Interposed()
    {
        std::lock_guard lock(callsMutex);
        recording = false;
        failWritesWith = failOpensWith = 0;
    }
};

QStringList leftovers(const QString &folder)
{
    return QDir(folder).entryList({QStringLiteral("*.tmp-*")}, QDir::Files | QDir::Hidden);
}

} // namespace

extern "C" {

ssize_t write(int descriptor, const void *data, size_t size)
{
    if (recording && failWritesWith && descriptor > 2) {
        errno = failWritesWith;
        return -1;
    }
    return real<ssize_t (*)(int, const void *, size_t)>("write")(descriptor, data, size);
}

int open(const char *path, int flags, ...)
{
    mode_t mode = 0;
    if (flags & O_CREAT) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if (recording && failOpensWith && (flags & O_CREAT)) {
        errno = failOpensWith;
        return -1;
    }
    return real<int (*)(const char *, int, ...)>("open")(path, flags, mode);
}

int fdatasync(int descriptor)
{
    note("flush " + kindOf(descriptor));
    return real<int (*)(int)>("fdatasync")(descriptor);
}

int fsync(int descriptor)
{
    note("flush " + kindOf(descriptor));
    return real<int (*)(int)>("fsync")(descriptor);
}

int rename(const char *from, const char *to)
{
    note("rename");
    return real<int (*)(const char *, const char *)>("rename")(from, to);
}

} // extern "C"

TEST(AtomicFile, AFlushedWriteReachesTheDiskBeforeAndAfterItsRenameAndAWrittenOneLeavesThatToAThread)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("state.json"));
    {
        Interposed interposed;
        ASSERT_FALSE(AtomicFile::write(path, "{}").has_value());
        EXPECT_EQ(recorded(), (std::vector<std::string>{"flush file", "rename", "flush folder"}));
    }
    {
        Interposed interposed;
        ASSERT_FALSE(AtomicFile::write(path, "{\"a\":1}", 0644, AtomicFile::Durability::Written).has_value());
        EXPECT_EQ(recorded(), std::vector<std::string>{"rename"});
        AtomicFile::flushInBackground(path);
        QThreadPool::globalInstance()->waitForDone();
        EXPECT_EQ(recorded(), (std::vector<std::string>{"rename", "flush file", "flush folder"}));
    }
    EXPECT_EQ(test::readText(path), QStringLiteral("{\"a\":1}"));
}

TEST(AtomicFile, AFullOrRefusingDiskLeavesTheOldFileWholeAndNothingBesideItUntilSpaceReturns)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("openai-key"));
    ASSERT_FALSE(AtomicFile::write(path, "old", 0600).has_value());
    for (const int error : {ENOSPC, EDQUOT, EROFS}) {
        Interposed interposed;
        (error == EROFS ? failOpensWith : failWritesWith) = error;
        const std::optional<QString> failure = AtomicFile::write(path, "new", 0600);
        ASSERT_TRUE(failure.has_value()) << error;
        EXPECT_EQ(AtomicFile::isDiskFull(*failure), error != EROFS) << failure->toStdString();
        EXPECT_EQ(test::readText(path), QStringLiteral("old"));
        EXPECT_EQ(leftovers(folder.path()), QStringList());
    }
    EXPECT_FALSE(AtomicFile::write(path, "new", 0600).has_value());
    EXPECT_EQ(test::readText(path), QStringLiteral("new"));
}
