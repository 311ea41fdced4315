#include "support/DiskFaults.h"

#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mutex>

namespace zentoro::test {

namespace {

std::mutex callsMutex;
std::vector<std::string> recordedCalls;
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
        recordedCalls.push_back(std::move(call));
}

std::string kindOf(int descriptor)
{
    struct stat status {};
    fstat(descriptor, &status);
    return S_ISDIR(status.st_mode) ? "folder" : "file";
}

} // namespace

DiskFaults::DiskFaults(int writeError, int createError)
{
    std::lock_guard lock(callsMutex);
    recordedCalls.clear();
    failWritesWith = writeError;
    failOpensWith = createError;
    recording = true;
}

DiskFaults::~DiskFaults()
{
    std::lock_guard lock(callsMutex);
    recording = false;
    failWritesWith = failOpensWith = 0;
}

std::vector<std::string> DiskFaults::calls() const
{
    std::lock_guard lock(callsMutex);
    return recordedCalls;
}

} // namespace zentoro::test

extern "C" {

ssize_t write(int descriptor, const void *data, size_t size)
{
    if (zentoro::test::recording && zentoro::test::failWritesWith && descriptor > 2) {
        errno = zentoro::test::failWritesWith;
        return -1;
    }
    return zentoro::test::real<ssize_t (*)(int, const void *, size_t)>("write")(descriptor, data, size);
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
    if (zentoro::test::recording && zentoro::test::failOpensWith && (flags & O_CREAT)) {
        errno = zentoro::test::failOpensWith;
        return -1;
    }
    return zentoro::test::real<int (*)(const char *, int, ...)>("open")(path, flags, mode);
}

int fdatasync(int descriptor)
{
    zentoro::test::note("flush " + zentoro::test::kindOf(descriptor));
    return zentoro::test::real<int (*)(int)>("fdatasync")(descriptor);
}

int fsync(int descriptor)
{
    zentoro::test::note("flush " + zentoro::test::kindOf(descriptor));
    return zentoro::test::real<int (*)(int)>("fsync")(descriptor);
}

int rename(const char *from, const char *to)
{
    zentoro::test::note("rename");
    return zentoro::test::real<int (*)(const char *, const char *)>("rename")(from, to);
}

} // extern "C"
