#pragma once

// What the benchmark programs share: medians, the process's resident memory, and waiting for
// a task on the main thread.
#include <QCoroTask>
#include <QFile>

#include <algorithm>
#include <unistd.h>
#include <vector>

namespace zentoro::bench {

inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

inline double residentMiB()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.value(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

template <typename T>
T await(QCoro::Task<T> &&task)
{
    return QCoro::waitFor(std::move(task));
}

} // namespace zentoro::bench
