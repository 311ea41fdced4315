#include "support/ProcessTable.h"

#include "support/Await.h"

#include <QDir>
#include <QFile>

#include <signal.h>
#include <unistd.h>

namespace zentoro::test::ProcessTable {

namespace {

QList<pid_t> allProcesses()
{
    QList<pid_t> pids;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        bool isNumber = false;
        const pid_t pid = pid_t(entry.toInt(&isNumber));
        if (isNumber)
            pids.append(pid);
    }
    return pids;
}

QByteArray readProcFile(pid_t pid, const char *name)
{
    // Files under /proc report no size, so they are read to their end by hand.
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(QString::fromLatin1(name)));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    QByteArray bytes;
    char buffer[4096];
    for (qint64 got; (got = file.read(buffer, sizeof buffer)) > 0;)
        bytes.append(buffer, got);
    return bytes;
}

// The fields of /proc/<pid>/stat after the name, which is in parentheses and may hold
// anything: the state first, then the parent.
QList<QByteArray> statusFields(pid_t pid)
{
    const QByteArray stat = readProcFile(pid, "stat");
    const qsizetype close = stat.lastIndexOf(')');
    if (close < 0)
        return {};
    return stat.mid(close + 1).simplified().split(' ');
}

} // namespace

bool isAlive(pid_t pid)
{
    const QList<QByteArray> fields = statusFields(pid);
    if (fields.isEmpty() || fields[0].isEmpty())
        return false;
    const char state = fields[0][0];
    return state != 'Z' && state != 'X';
}

QList<pid_t> childrenOf(pid_t pid)
{
    QList<pid_t> children;
    const QList<pid_t> pids = allProcesses();
    for (pid_t candidate : pids) {
        const QList<QByteArray> fields = statusFields(candidate);
        if (fields.size() > 1 && fields[1].toInt() == pid)
            children.append(candidate);
    }
    return children;
}

QList<pid_t> mentioning(const QString &text)
{
    const QByteArray wanted = text.toLocal8Bit();
    QList<pid_t> found;
    const QList<pid_t> pids = allProcesses();
    for (pid_t pid : pids) {
        if (pid != ::getpid() && readProcFile(pid, "cmdline").contains(wanted) && isAlive(pid))
            found.append(pid);
    }
    return found;
}

bool killAll(const QStringList &texts, std::chrono::milliseconds timeout)
{
    auto left = [&] {
        QList<pid_t> pids;
        for (const QString &text : texts)
            pids += mentioning(text);
        return pids;
    };
    return spinUntil([&] {
        const QList<pid_t> pids = left();
        for (pid_t pid : pids)
            ::kill(pid, SIGKILL);
        return pids.isEmpty();
    }, timeout);
}

} // namespace zentoro::test::ProcessTable
