#include "RealProgram.h"

#include "runtime/Runtime.h"

#include "support/Await.h"
#include "support/Files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <signal.h>
#include <unistd.h>

namespace zentoro::test {

QString programPath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/../zentoro");
}

::testing::AssertionResult buildVersions(const Workspace &workspace,
                                         const QList<std::pair<QString, QByteArray>> &changes)
{
    QDir(workspace.root).removeRecursively();
    workspace.prepare();
    Runtime runtime(workspace);
    await(runtime.checkToolchain());
    if (!runtime.toolchain().isReady())
        return ::testing::AssertionFailure() << runtime.toolchainDescription().toStdString();
    for (qsizetype next = 0; next <= changes.size(); ++next) {
        const BuildOutcome outcome = await(runtime.build(QStringLiteral("Version %1").arg(next + 1)));
        if (!outcome.success())
            return ::testing::AssertionFailure() << outcome.failure()->text.toStdString();
        if (next < changes.size())
            writeFile(workspace.sources() + u'/' + changes[next].first, changes[next].second);
    }
    return ::testing::AssertionSuccess();
}

namespace ProcessTable {

namespace {

QList<pid_t> allProcesses()
{
    QList<pid_t> pids;
    for (const QString &entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (const int pid = entry.toInt())
            pids.append(pid_t(pid));
    }
    return pids;
}

QByteArray procFile(pid_t pid, const char *name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(QString::fromLatin1(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The fields of /proc/<pid>/stat after the name, which is in parentheses and may hold
// anything: the state first, then the parent.
QList<QByteArray> statusFields(pid_t pid)
{
    const QByteArray stat = procFile(pid, "stat");
    const qsizetype close = stat.lastIndexOf(')');
    return close < 0 ? QList<QByteArray>() : stat.mid(close + 1).simplified().split(' ');
}

} // namespace

bool isAlive(pid_t pid)
{
    const QList<QByteArray> fields = statusFields(pid);
    return !fields.isEmpty() && !fields[0].isEmpty() && fields[0][0] != 'Z' && fields[0][0] != 'X';
}

QList<pid_t> childrenOf(pid_t pid)
{
    QList<pid_t> children;
    for (pid_t candidate : allProcesses()) {
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
    for (pid_t pid : allProcesses()) {
        if (pid != ::getpid() && procFile(pid, "cmdline").contains(wanted) && isAlive(pid))
            found.append(pid);
    }
    return found;
}

bool killAll(const QStringList &texts, std::chrono::milliseconds timeout)
{
    return spinUntil(
        [&] {
            QList<pid_t> pids;
            for (const QString &text : texts)
                pids += mentioning(text);
            for (pid_t pid : pids)
                ::kill(pid, SIGKILL);
            return pids.isEmpty();
        },
        timeout);
}

pid_t holdingConnection(quint16 clientPort, quint16 serverPort, const QList<pid_t> &among)
{
    // Lines of "sl local_address rem_address st tx:rx tr:when retrnsmt uid timeout inode …",
    // addresses as hexadecimal "address:port".
    const auto portOf = [](const QByteArray &address) {
        return address.mid(address.indexOf(':') + 1).toUInt(nullptr, 16);
    };
    QByteArray socket;
    QFile table(QStringLiteral("/proc/net/tcp"));
    if (!table.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : table.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() > 9 && portOf(fields[1]) == clientPort && portOf(fields[2]) == serverPort) {
            socket = "socket:[" + fields[9] + ']';
            break;
        }
    }
    if (socket.isEmpty())
        return 0;
    for (pid_t pid : among) {
        const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(pid));
        for (const QString &descriptor : descriptors.entryList(QDir::Files | QDir::System)) {
            char target[64] = {};
            const QByteArray path = QFile::encodeName(descriptors.filePath(descriptor));
            const ssize_t length = ::readlink(path.constData(), target, sizeof target - 1);
            if (length > 0 && QByteArrayView(target, length) == socket)
                return pid;
        }
    }
    return 0;
}

} // namespace ProcessTable

Program::Program(const QString &name)
    : environment(QProcessEnvironment::systemEnvironment()), workspace(Workspace::forName(name)),
      link(folder_.filePath(name))
{
    QFile::link(programPath(), link);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProgram(link);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
}

Program::~Program()
{
    ProcessTable::killAll({link, workspace.root});
    process.waitForFinished(2000);
}

void Program::start(const QStringList &arguments)
{
    process.setProcessEnvironment(environment);
    process.setArguments(arguments);
    process.start();
    ASSERT_TRUE(process.waitForStarted());
}

} // namespace zentoro::test
