#include "runtime/Workspace.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace zentoro {

namespace {

// Regular files only: a symbolic link is neither listed nor followed, so a link can't
// pull files from elsewhere into a build or a listing.
void collectFiles(const QString &folder, QStringList &files)
{
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isSymLink())
            continue;
        if (entry.isDir())
            collectFiles(entry.filePath(), files);
        else if (entry.isFile())
            files.append(entry.filePath());
    }
}

bool isWithin(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + u'/');
}

// Throws when some existing step of `candidate` below "Sources" is a symbolic link whose
// end lies outside "Sources" or nowhere. Each step is checked with its parent already
// known to be inside, so a chain of links can't slip through.
void refuseLinksLeadingOut(const QString &sources, const QString &candidate, const QString &shownPath)
{
    const QString inside = QFileInfo(sources).canonicalFilePath();
    if (inside.isEmpty())
        return;
    const QStringList steps = candidate.mid(sources.size() + 1).split(u'/');
    QString path = sources;
    for (const QString &step : steps) {
        path += u'/' + step;
        const QFileInfo info(path);
        if (!info.isSymLink()) {
            if (!info.exists())
                return;
            continue;
        }
        const QString end = info.canonicalFilePath();
        if (end.isEmpty() || !isWithin(end, inside))
            throw Workspace::Failure(
                QStringLiteral("%1 goes through a symbolic link that leads outside the source folder.").arg(shownPath));
    }
}

} // namespace

QStringList Workspace::files() const
{
    QStringList found;
    collectFiles(sources(), found);
    std::sort(found.begin(), found.end(),
              [this](const QString &a, const QString &b) { return relativePath(a) < relativePath(b); });
    return found;
}

QStringList Workspace::swiftFiles() const
{
    return swiftFiles(sources());
}

QStringList Workspace::swiftFiles(const QString &folder)
{
    QStringList found;
    collectFiles(folder, found);
    // Below one folder, the order of whole paths is the order of relative ones.
    std::sort(found.begin(), found.end());
    QStringList swift;
    for (const QString &file : found) {
        if (QFileInfo(file).suffix() == QStringLiteral("swift"))
            swift.append(file);
    }
    return swift;
}

QString Workspace::resolve(const QString &path) const
{
    const QString trimmed = path.trimmed();
    if (trimmed.isEmpty() || trimmed.startsWith(u'/') || trimmed.startsWith(u'~'))
        throw Failure(QStringLiteral("Use a path relative to the source folder, like \"AppRoot.swift\"."));
    // The system would cut the path at the NUL and act on another file than the one named.
    if (trimmed.contains(QChar(0)))
        throw Failure(QStringLiteral("A path can't contain a NUL character."));
    const QString folder = QDir::cleanPath(sources());
    QString candidate = QDir::cleanPath(folder + u'/' + trimmed);
    // Names that look alike may be spelled in two Unicode forms; the one on disk wins.
    if (!QFileInfo::exists(candidate)) {
        for (const auto form : {QString::NormalizationForm_C, QString::NormalizationForm_D}) {
            const QString spelled = candidate.normalized(form);
            if (spelled != candidate && QFileInfo::exists(spelled)) {
                candidate = spelled;
                break;
            }
        }
    }
    if (!candidate.startsWith(folder + u'/'))
        throw Failure(QStringLiteral("%1 is outside the source folder.").arg(trimmed));
    refuseLinksLeadingOut(folder, candidate, trimmed);
    return candidate;
}

QString Workspace::relativePath(const QString &location) const
{
    const QString prefix = QDir::cleanPath(sources()) + u'/';
    const QString path = QDir::cleanPath(location);
    return path.startsWith(prefix) ? path.mid(prefix.size()) : location;
}

} // namespace zentoro
