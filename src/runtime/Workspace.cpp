#include "runtime/Workspace.h"

#include "core/SupportFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <filesystem>
#include <map>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

// The starter app lives in a resource list of the static core library; naming its
// initialiser keeps it linked into every program that installs the seed.
static void registerSeedResource()
{
    static const bool registered = [] {
        Q_INIT_RESOURCE(seed);
        return true;
    }();
    Q_UNUSED(registered);
}

namespace zentoro {

namespace {

const QString seedFolder = QStringLiteral(":/Seed");

QString systemWords(const std::error_code &error)
{
    return QString::fromLocal8Bit(error.message());
}

void makeFolder(const QString &path)
{
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    if (error)
        throw Workspace::Failure(QStringLiteral("Couldn't create the folder “%1”: %2.").arg(path, systemWords(error)));
}

void removeItem(const QString &path)
{
    std::error_code error;
    std::filesystem::remove_all(QFile::encodeName(path).toStdString(), error);
    if (error)
        throw Workspace::Failure(QStringLiteral("Couldn't remove “%1”: %2.").arg(path, systemWords(error)));
}

void renameItem(const QString &from, const QString &to)
{
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(from).toStdString(), QFile::encodeName(to).toStdString(), error);
    if (error)
        throw Workspace::Failure(QStringLiteral("Couldn't put the new sources in place: %1.").arg(systemWords(error)));
}

// Copies the tree at `from` (a folder on disk or in the resources) to the new folder `to`.
// Files are written fresh, so resource files don't arrive read-only; links stay links.
void copyTree(const QString &from, const QString &to)
{
    if (!QFileInfo(from).isDir())
        throw Workspace::Failure(QStringLiteral("Couldn't copy “%1”: there's no folder there.").arg(from));
    makeFolder(to);
    const QFileInfoList entries = QDir(from).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                                           QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const QString target = to + u'/' + entry.fileName();
        if (entry.isSymLink()) {
            std::error_code error;
            const auto linkTarget = std::filesystem::read_symlink(QFile::encodeName(entry.filePath()).toStdString(),
                                                                  error);
            if (!error)
                std::filesystem::create_symlink(linkTarget, QFile::encodeName(target).toStdString(), error);
            if (error)
                throw Workspace::Failure(
                    QStringLiteral("Couldn't copy “%1”: %2.").arg(entry.filePath(), systemWords(error)));
        } else if (entry.isDir()) {
            copyTree(entry.filePath(), target);
        } else {
            QFile source(entry.filePath());
            if (!source.open(QIODevice::ReadOnly))
                throw Workspace::Failure(
                    QStringLiteral("Couldn't copy “%1”: %2.").arg(entry.filePath(), source.errorString()));
            QFile copy(target);
            if (!copy.open(QIODevice::WriteOnly | QIODevice::Truncate) || copy.write(source.readAll()) < 0 ||
                !copy.flush())
                throw Workspace::Failure(QStringLiteral("Couldn't copy “%1”: %2.").arg(target, copy.errorString()));
        }
    }
}

} // namespace

QString Workspace::nameFromExecutable(const QString &argv0, const QString &appImage)
{
    const QString path = appImage.isEmpty() ? argv0 : appImage;
    QString name = QFileInfo(path).fileName();
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot > 0)
        name.truncate(dot);
    return name.isEmpty() ? QStringLiteral("Zentoro") : name;
}

Workspace Workspace::forName(const QString &name)
{
    return Workspace{name, support() + QStringLiteral("/Apps/") + name};
}

QString Workspace::support()
{
    return supportFolder();
}

Workspace Workspace::forExecutable(const QString &argv0)
{
    return forName(nameFromExecutable(argv0, qEnvironmentVariable("APPIMAGE")));
}

QString Workspace::conversation(const QUuid &id) const
{
    return root + QStringLiteral("/Conversations/") + id.toString(QUuid::WithoutBraces).toUpper() +
           QStringLiteral(".json");
}

QString Workspace::version(int number) const
{
    return versions() + u'/' + QString::number(number);
}

QString Workspace::dylib(int number) const
{
    return version(number) + QStringLiteral("/libZentoroApp") + QString::number(number) + QStringLiteral(".so");
}

QString Workspace::kitStamp(int number) const
{
    return version(number) + QStringLiteral("/kit.json");
}

QString Workspace::defaultsSuite() const
{
    return QString::fromLatin1(bundleIdentifier) + QStringLiteral(".app.") + name;
}

void Workspace::prepare() const
{
    for (const QString &folder : {root, versions(), logs(), data(), build()})
        makeFolder(folder);
    finishReplacingSources();
    if (!QFileInfo(sources()).exists() && !QFileInfo(sources()).isSymLink())
        installSeed();
}

void Workspace::installSeed() const
{
    registerSeedResource();
    if (!QFileInfo(seedFolder).isDir())
        throw Failure(QStringLiteral("The Zentoro bundle has no Seed folder."));
    replaceSources(seedFolder);
}

void Workspace::replaceSources(const QString &folder) const
{
    const QString incoming = incomingSources();
    removeItem(incoming);
    try {
        copyTree(folder, incoming);
    } catch (const Failure &) {
        std::error_code ignored;
        std::filesystem::remove_all(QFile::encodeName(incoming).toStdString(), ignored);
        throw;
    }
    // Two renames, and the old tree goes only once the new one stands: a process killed at any
    // moment leaves a state that `finishReplacingSources` completes or undoes.
    const QString outgoing = outgoingSources();
    removeItem(outgoing);
    if (QFileInfo(sources()).exists() || QFileInfo(sources()).isSymLink())
        renameItem(sources(), outgoing);
    std::error_code ignored;
    try {
        renameItem(incoming, sources());
    } catch (const Failure &) {
        std::filesystem::rename(QFile::encodeName(outgoing).toStdString(), QFile::encodeName(sources()).toStdString(),
                                ignored);
        std::filesystem::remove_all(QFile::encodeName(incoming).toStdString(), ignored);
        throw;
    }
    // The new tree stands; an old one that won't go is removed at the next start.
    std::filesystem::remove_all(QFile::encodeName(outgoing).toStdString(), ignored);
}

void Workspace::finishReplacingSources() const
{
    const QFileInfo current(sources());
    const bool hasSources = current.exists() || current.isSymLink();
    const bool hasOutgoing = QFileInfo::exists(outgoingSources());
    std::error_code ignored;
    if (!hasSources && hasOutgoing) {
        // Between the two renames: the incoming copy was complete before the first.
        const QString from = QFileInfo::exists(incomingSources()) ? incomingSources() : outgoingSources();
        std::filesystem::rename(QFile::encodeName(from).toStdString(), QFile::encodeName(sources()).toStdString(),
                                ignored);
    }
    std::filesystem::remove_all(QFile::encodeName(outgoingSources()).toStdString(), ignored);
    // A copy cut short before any rename; the old sources stand.
    std::filesystem::remove_all(QFile::encodeName(incomingSources()).toStdString(), ignored);
}

bool Workspace::lock() const
{
    // One descriptor per root, never closed: the system drops the lock when the process
    // ends in any way, a crash included.
    static std::map<QString, int> held;
    if (held.contains(root))
        return true;
    std::error_code ignored;
    std::filesystem::create_directories(QFile::encodeName(root).toStdString(), ignored);
    const QByteArray path = QFile::encodeName(root + QStringLiteral("/.lock"));
    const int descriptor = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (descriptor < 0)
        return true;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(descriptor);
        return false;
    }
    held.emplace(root, descriptor);
    return true;
}

} // namespace zentoro
