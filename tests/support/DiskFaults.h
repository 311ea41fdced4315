#pragma once

#include <string>
#include <vector>

namespace zentoro::test {

// A disk that fills up or refuses, for the test program that uses it: while one of these
// lives, writes to files fail with `writeError` and creating files with `createError`
// (0: they succeed), and flushes and renames are recorded in order. The system calls are
// interposed in the test program; outside that lifetime they pass straight through.
class DiskFaults {
public:
    explicit DiskFaults(int writeError = 0, int createError = 0);
    ~DiskFaults();
    DiskFaults(const DiskFaults &) = delete;
    DiskFaults &operator=(const DiskFaults &) = delete;

    // "flush file", "flush folder", "rename", in the order they happened.
    std::vector<std::string> calls() const;
};

} // namespace zentoro::test
