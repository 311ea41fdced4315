#include "runtime/Runtime.h"

#include "runtime/BuildSteps.h"
#include "runtime/DiskFull.h"
#include "runtime/Kit.h"
#include "runtime/KitStamp.h"
#include "runtime/Shell.h"

#include "core/AtomicFile.h"
#include "core/Log.h"

#include <QCoroSignal>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

namespace zentoro {

namespace {

bool copyFolder(const QString &from, const QString &to)
{
    if (!QDir().mkpath(to))
        return false;
    const QDir source(from);
    bool copied = true;
    for (const QFileInfo &entry : source.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        const QString target = to + u'/' + entry.fileName();
        if (entry.isDir() && !entry.isSymLink())
            copied = copyFolder(entry.filePath(), target) && copied;
        else
            copied = QFile::copy(entry.filePath(), target) && copied;
    }
    return copied;
}

void logCompile(int number, qsizetype files)
{
    qCDebug(logRuntime, "Compiling version %d from %lld source files.", number, qlonglong(files));
}

void logCompiled(int number, int status, qint64 milliseconds)
{
    qCDebug(logRuntime, "The compiler ended with status %d for version %d after %lld ms.", status, number,
            qlonglong(milliseconds));
}

} // namespace

QCoro::Task<BuildOutcome> Runtime::build(QString summary)
{
    // The compiler is looked for at every start: a build asked for in that moment waits.
    while (checks_ > 0)
        co_await qCoro(this, &Runtime::toolchainChecked);
    if (!toolchain_.isReady()) {
        co_return BuildOutcome{BuildOutcome::Failure{
            QStringLiteral("The Swift compiler isn't available yet (%1). Ask the user to install the Swift toolchain "
                           "from Zentoro's window.")
                .arg(toolchainDescription())}};
    }
    if (isBuilding_)
        co_return BuildOutcome{BuildOutcome::Failure{QStringLiteral("Another build is already running.")}};
    setIsBuilding(true);
    BuildOutcome outcome = co_await compileAndLoad(freeNumber(), std::move(summary));
    setIsBuilding(false);
    co_return outcome;
}

int Runtime::freeNumber() const
{
    // A version folder without a record is a version whose record was lost with "state.json":
    // its number stays taken. An empty folder is what a build that never compiled left.
    int number = state_.nextNumber;
    while (!QDir(workspace_.version(number))
                .isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
        ++number;
    return number;
}

KitStamp Runtime::currentKitStamp() const
{
    const Toolchain::Compiler *compiler = toolchain_.compiler();
    return compiler ? KitStamp{Kit::identity(compiler->version), Toolchain::fingerprint(compiler->swiftc)} : KitStamp{};
}

QCoro::Task<Runtime::Compilation> Runtime::compile(int number, QString sources, QString output)
{
    const QStringList files = Workspace::swiftFiles(sources);
    if (files.isEmpty())
        co_return Compilation{QStringLiteral("There are no .swift files in the source folder."), {}};
    if (files.size() > BuildSteps::swiftFileLimit)
        co_return Compilation{BuildSteps::tooManyFiles(files.size()), {}};

    const QString entry = workspace_.build() + QStringLiteral("/ZentoroEntry.swift");
    AtomicFile::write(entry, BuildSteps::entryFile(workspace_.name, workspace_.defaultsSuite()).toUtf8());

    const Toolchain::Compiler compiler = *toolchain_.compiler();
    setIsPreparingKit(!Kit::isReady(compiler.version));
    const Kit::Build kit = co_await Kit::ensureBuilt(TaskHandle(), compiler.swiftc, compiler.version);
    setIsPreparingKit(false);
    if (!kit.ok()) {
        if (DiskFull::explainsBuildFailure(kit.error, workspace_.build()))
            co_return Compilation{DiskFull::buildFailure(), {}};
        co_return Compilation{kit.error, {}};
    }
    BuildSteps::CompileInputs inputs;
    inputs.module = QStringLiteral("ZentoroApp") + QString::number(number);
    inputs.output = output;
    inputs.moduleCache = workspace_.build() + QStringLiteral("/ModuleCache");
    inputs.sdk = compiler.sdk;
    inputs.kitFlags = kit.arguments;
    inputs.files = QStringList(entry) + files;
    QStringList arguments;
    const QString argumentsFile = workspace_.build() + QStringLiteral("/arguments.resp");
    if (const auto error = AtomicFile::write(argumentsFile,
                                             BuildSteps::responseFile(BuildSteps::compilerArguments(inputs), arguments),
                                             0644, AtomicFile::Durability::Written)) {
        if (AtomicFile::isDiskFull(*error))
            co_return Compilation{DiskFull::buildFailure(), {}};
        co_return Compilation{QStringLiteral("Couldn't write the compiler's list of files: %1").arg(*error), {}};
    }
    arguments.prepend(u'@' + argumentsFile);
    QElapsedTimer clock;
    clock.start();
    logCompile(number, files.size());
    const Shell::Result result = co_await Shell::run(compiler.swiftc, arguments, workspace_.build());
    logCompiled(number, result.status, clock.elapsed());
    const QString cleaned = BuildSteps::clean(result.output, sources, entry);
    if (result.status == 0 && QFile::exists(output))
        co_return Compilation{std::nullopt, cleaned};
    if (DiskFull::explainsBuildFailure(result.output, workspace_.build()))
        co_return Compilation{DiskFull::buildFailure(), {}};
    co_return Compilation{cleaned.isEmpty() ? QStringLiteral("swiftc failed (status %1).").arg(result.status) : cleaned,
                          {}};
}

QCoro::Task<BuildOutcome> Runtime::compileAndLoad(int number, QString summary)
{
    // The number is not reserved: only a success moves `nextNumber` on.
    const QString folder = workspace_.version(number);
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);

    QElapsedTimer clock;
    clock.start();
    const QString sources = workspace_.sources();
    const QString library = workspace_.dylib(number);
    const Compilation compiled = co_await compile(number, sources, library);
    if (compiled.failure) {
        QDir(folder).removeRecursively();
        co_return BuildOutcome{BuildOutcome::Failure{*compiled.failure}};
    }

    // A version whose snapshot fails to copy still runs; it just can't be gone back to.
    copyFolder(sources, folder + QStringLiteral("/Sources"));
    currentKitStamp().write(workspace_.kitStamp(number));
    RuntimeState built = state_;
    built.versions.append(
        {number, QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch(), Qt::UTC), summary, false});
    built.nextNumber = number + 1;
    saveState(built);

    if (const std::optional<QString> error = load(number)) {
        co_return BuildOutcome{BuildOutcome::Failure{
            QStringLiteral("Version %1 compiled, but loading it failed: %2").arg(QString::number(number), *error)}};
    }
    co_return BuildOutcome{BuildOutcome::Success{number, clock.elapsed() / 1000.0, compiled.output}};
}

} // namespace zentoro
