#include "runtime/Kit.h"

#include "core/Log.h"
#include "runtime/BuildSteps.h"
#include "runtime/Shell.h"
#include "runtime/Workspace.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QThread>
#include <QUuid>

#include <algorithm>

// The kit's sources live in a resource list of the static core library; naming its
// initialiser keeps it linked into every program that builds the kit.
static void registerKitResource()
{
    static const bool registered = [] {
        Q_INIT_RESOURCE(kit);
        return true;
    }();
    Q_UNUSED(registered);
}

namespace zentoro::Kit {

namespace {

const QString resourceRoot = QStringLiteral(":/Kit");
const QString module = QStringLiteral("SwiftUI.swiftmodule");

QStringList resourceFiles()
{
    registerKitResource();
    QStringList files;
    QDirIterator it(resourceRoot, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next().mid(resourceRoot.size() + 1);
    files.sort();
    return files;
}

QString safeName(const QString &text)
{
    QString name;
    for (const QChar c : text.trimmed())
        name += (c.isLetterOrNumber() || c == u'.' || c == u'-') ? c : u'_';
    return name;
}

// A folder left by an older Zentoro, whose library had another name, counts as incomplete.
bool isComplete(const QString &folder, const QString &identity)
{
    return QFile::exists(folder + u'/' + libraryName(identity)) && QFile::exists(folder + u'/' + module);
}

// Moves whatever stands at `folder` out of the way and `staging` in; true when `folder` then
// holds a complete kit, this one or one that another copy put there first.
bool putInPlace(const QString &staging, const QString &folder, const QString &identity)
{
    if (QDir().rename(staging, folder))
        return true;
    if (isComplete(folder, identity))
        return true;
    const QString aside = staging + QStringLiteral("-old");
    if (!QDir().rename(folder, aside))
        return false;
    const bool moved = QDir().rename(staging, folder);
    QDir(aside).removeRecursively();
    return moved || isComplete(folder, identity);
}

// Called while `staging` still exists: the compiler may name it by the path that links lead to.
QString failureText(const Shell::Result &result, const QString &staging)
{
    QString output = result.output;
    for (const QString &folder : {staging, QFileInfo(staging).canonicalFilePath()}) {
        if (folder.isEmpty())
            continue;
        output.remove(folder + QStringLiteral("/src/"));
        output.remove(folder + u'/');
    }
    output = BuildSteps::capped(output);
    return output.isEmpty() ? QStringLiteral("The UI kit didn't build (swiftc status %1).").arg(result.status)
                            : QStringLiteral("The UI kit didn't build:\n") + output;
}

// Copies the kit's sources out of the program into `folder`; returns the Swift files.
std::optional<QStringList> extract(const QString &folder, QString &error)
{
    QStringList swiftFiles;
    for (const QString &file : resourceFiles()) {
        const QString target = folder + u'/' + file;
        QDir().mkpath(QFileInfo(target).path());
        QFile source(resourceRoot + u'/' + file);
        QFile out(target);
        if (!source.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly) || out.write(source.readAll()) < 0) {
            error = QStringLiteral("Couldn't write the UI kit's sources to %1: %2").arg(target, out.errorString());
            return std::nullopt;
        }
        if (file.endsWith(QStringLiteral(".swift")))
            swiftFiles << target;
    }
    return swiftFiles;
}

QString targetTriple()
{
#if defined(__aarch64__)
    return QStringLiteral("aarch64-unknown-linux-gnu");
#else
    return QStringLiteral("x86_64-unknown-linux-gnu");
#endif
}

void logBuilding(const QString &folder)
{
    qCInfo(logKit, "Building the UI kit into %s; this takes a minute or two.", qUtf8Printable(folder));
}

void logFailure(int status, const QString &output)
{
    qCWarning(logKit, "The UI kit didn't build (swiftc status %d):\n%s", status, qUtf8Printable(output));
}

} // namespace

QString version()
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString &file : resourceFiles()) {
        QFile source(resourceRoot + u'/' + file);
        source.open(QIODevice::ReadOnly);
        hash.addData(file.toUtf8());
        hash.addData(source.readAll());
    }
    return QString::fromLatin1(hash.result().toHex().left(12));
}

QString identity(const QString &compilerVersion)
{
    return version() + u'-' + safeName(compilerVersion);
}

QString libraryName(const QString &identity)
{
    return QStringLiteral("libSwiftUI-") + identity + QStringLiteral(".so");
}

QString cacheFolder(const QString &compilerVersion)
{
    return Workspace::support() + QStringLiteral("/KitCache/") + identity(compilerVersion);
}

QString preparedFolder(const QString &compilerVersion)
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/KitCache/") + identity(compilerVersion);
}

QString installedFolder(const QString &compilerVersion)
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../lib/zentoro/KitCache/") +
                           identity(compilerVersion));
}

std::optional<QString> readyPreparedFolder(const QString &compilerVersion)
{
    const QString kit = identity(compilerVersion);
    for (const QString &folder : {preparedFolder(compilerVersion), installedFolder(compilerVersion)}) {
        if (isComplete(folder, kit))
            return folder;
    }
    return std::nullopt;
}

bool isReady(const QString &compilerVersion)
{
    return readyPreparedFolder(compilerVersion) || isComplete(cacheFolder(compilerVersion), identity(compilerVersion));
}

QStringList appArguments(const QString &folder)
{
    const QString name = QFileInfo(folder).fileName();
    // Every file of the app sees SwiftUI, as on a Mac, where Foundation alone brings Combine's
    // ObservableObject and the kit's own names: a model file that imports only Foundation builds.
    return {QStringLiteral("-Xfrontend"),
            QStringLiteral("-import-module"),
            QStringLiteral("-Xfrontend"),
            QStringLiteral("SwiftUI"),
            QStringLiteral("-I"),
            folder,
            QStringLiteral("-I"),
            folder + QStringLiteral("/include"),
            QStringLiteral("-L"),
            folder,
            QStringLiteral("-lSwiftUI-") + name,
            QStringLiteral("-Xlinker"),
            QStringLiteral("-rpath"),
            QStringLiteral("-Xlinker"),
            folder};
}

QCoro::Task<Build> ensureBuilt(const TaskHandle &task, const QString &swiftc, const QString &compilerVersion)
{
    if (const auto prepared = readyPreparedFolder(compilerVersion))
        co_return Build{appArguments(*prepared), {}};
    co_return co_await buildInto(cacheFolder(compilerVersion), task, swiftc);
}

QCoro::Task<Build> buildInto(const QString &folder, const TaskHandle &task, const QString &swiftc)
{
    // The folder is named by the kit's identity, which names its library too.
    const QString kit = QFileInfo(folder).fileName();
    const QString library = libraryName(kit);
    if (isComplete(folder, kit))
        co_return Build{appArguments(folder), {}};
    logBuilding(folder);

    const QString staging = QFileInfo(folder).path() + QStringLiteral("/.building-") +
                            QUuid::createUuid().toString(QUuid::WithoutBraces);
    QString error;
    const auto sources = extract(staging + QStringLiteral("/src"), error);
    if (!sources) {
        QDir(staging).removeRecursively();
        co_return Build{{}, error};
    }
    const QString include = staging + QStringLiteral("/src/Sources/ZentoroHostInterface/include");
    QStringList arguments{QStringLiteral("-emit-library"), QStringLiteral("-emit-module"),
                          QStringLiteral("-parse-as-library"), QStringLiteral("-module-name"),
                          QStringLiteral("SwiftUI"), QStringLiteral("-target"), targetTriple(),
                          QStringLiteral("-swift-version"), QStringLiteral("5"),
                          // One module in one frontend, its code generated on every core: the
                          // optimiser, not type checking, takes most of the time.
                          QStringLiteral("-O"), QStringLiteral("-wmo"), QStringLiteral("-num-threads"),
                          QString::number(std::max(1, QThread::idealThreadCount())), QStringLiteral("-I"), include,
                          QStringLiteral("-module-cache-path"), staging + QStringLiteral("/ModuleCache"),
                          QStringLiteral("-emit-module-path"), staging + u'/' + module, QStringLiteral("-Xlinker"),
                          QStringLiteral("-soname=") + library, QStringLiteral("-o"), staging + u'/' + library};
    arguments += *sources;
    const Shell::Result result = co_await Shell::run(swiftc, arguments, staging, task);

    if (result.status != 0 || !isComplete(staging, kit)) {
        const QString failure = failureText(result, staging);
        QDir(staging).removeRecursively();
        logFailure(result.status, result.output.trimmed());
        co_return Build{{}, failure};
    }
    // What app builds need next to the library: the module and the host interface's module map.
    QDir(staging + QStringLiteral("/ModuleCache")).removeRecursively();
    QDir().mkpath(staging + QStringLiteral("/include"));
    for (const QString &name : QDir(include).entryList(QDir::Files))
        QFile::copy(include + u'/' + name, staging + QStringLiteral("/include/") + name);
    QDir(staging + QStringLiteral("/src")).removeRecursively();

    // Another copy may have finished first; then its cache stands and this one goes.
    if (!putInPlace(staging, folder, kit)) {
        QDir(staging).removeRecursively();
        co_return Build{{}, QStringLiteral("Couldn't put the UI kit into %1.").arg(folder)};
    }
    QDir(staging).removeRecursively();
    co_return Build{appArguments(folder), {}};
}

} // namespace zentoro::Kit
