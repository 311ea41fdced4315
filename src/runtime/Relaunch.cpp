#include "runtime/Relaunch.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cstring>

#include <spawn.h>

extern char **environ;

namespace zentoro::Relaunch {

namespace {

QString &remembered()
{
    static QString path;
    return path;
}

} // namespace

QString script(qint64 pid, bool safeMode)
{
    const QString arguments = safeMode ? QStringLiteral("-ZentoroSafeMode YES") : QString();
    // The process counts as gone once it is a zombie: a parent that reaps late (a launcher, a
    // terminal) keeps it in the table, where `kill -0` would still find it.
    return QStringLiteral(
               "while s=$(cat /proc/%1/stat 2>/dev/null); do case ${s##*) } in Z*|X*) break;; esac; "
               "/bin/sleep 0.1; done\n"
               "set -- \"$0\" %2\n"
               "if [ -n \"$OPENAI_API_KEY\" ]; then exec /usr/bin/env \"OPENAI_API_KEY=$OPENAI_API_KEY\" \"$@\"; fi\n"
               "exec \"$@\"")
        .arg(pid)
        .arg(arguments);
}

QString executableFrom(const QString &argv0, const QString &appImage)
{
    if (!appImage.isEmpty())
        return QDir::cleanPath(QDir::current().absoluteFilePath(appImage));
    if (argv0.contains(u'/'))
        return QDir::cleanPath(QDir::current().absoluteFilePath(argv0));
    // Found on PATH: the folder it was found in, with the name as typed.
    if (const QString found = QStandardPaths::findExecutable(argv0); !found.isEmpty())
        return found;
    return QCoreApplication::applicationFilePath();
}

void rememberExecutable(const QString &argv0)
{
    remembered() = executableFrom(argv0, qEnvironmentVariable("APPIMAGE"));
}

QString executable()
{
    return remembered().isEmpty() ? QCoreApplication::applicationFilePath() : remembered();
}

std::optional<QString> start(const QString &script, const QString &program, pid_t *pid)
{
    const QByteArray shell = "/bin/sh";
    const QByteArray dashC = "-c";
    const QByteArray text = script.toUtf8();
    const QByteArray path = QFile::encodeName(program);
    char *const arguments[] = {const_cast<char *>(shell.constData()), const_cast<char *>(dashC.constData()),
                               const_cast<char *>(text.constData()), const_cast<char *>(path.constData()), nullptr};
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t child = 0;
    const int error = posix_spawn(&child, shell.constData(), nullptr, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        return QString::fromLocal8Bit(std::strerror(error));
    if (pid)
        *pid = child;
    return std::nullopt;
}

} // namespace zentoro::Relaunch
