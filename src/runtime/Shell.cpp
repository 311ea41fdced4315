#include "runtime/Shell.h"

#include <QProcess>

#include <QCoroSignal>

namespace zentoro::Shell {

namespace {

// Wakes the waiting task once the process has moved on: started, failed or finished.
class ProcessWatch : public QObject {
    Q_OBJECT
signals:
    void moved();
};

QCoro::Task<> waitWhile(QProcess &process, QProcess::ProcessState state)
{
    if (process.state() != state)
        co_return;
    ProcessWatch watch;
    QObject::connect(&process, &QProcess::stateChanged, &watch, &ProcessWatch::moved);
    while (process.state() == state)
        co_await qCoro(&watch, &ProcessWatch::moved);
}

} // namespace

QCoro::Task<Result> run(QString executable, QStringList arguments, QString directory, TaskHandle task)
{
    QProcess process;
    process.setProgram(executable);
    process.setArguments(arguments);
    // One pipe for both streams keeps the order in which the child wrote them.
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    if (!directory.isEmpty())
        process.setWorkingDirectory(directory);

    QObject cancelScope;
    task.whenCancelled(&cancelScope, [&process] {
        if (process.state() != QProcess::NotRunning)
            process.kill();
    });

    process.start(QIODevice::ReadOnly);
    co_await waitWhile(process, QProcess::Starting);
    if (process.error() == QProcess::FailedToStart)
        co_return Result{-1, process.errorString()};
    // QProcess drains the pipe as data arrives, so a talkative child never stalls on it.
    co_await waitWhile(process, QProcess::Running);
    const QString output = QString::fromUtf8(process.readAll());
    co_return Result{process.exitCode(), output};
}

} // namespace zentoro::Shell

#include "Shell.moc"
