#include "runtime/NewCopy.h"

#include "core/AtomicFile.h"
#include "core/Failure.h"
#include "runtime/DesktopEntry.h"
#include "runtime/Workspace.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <unistd.h>

namespace zentoro::NewCopy {

namespace {

// Most file systems take 255 bytes for a name.
constexpr qsizetype longestName = 255;

bool isWritableFolder(const QString &folder)
{
    return !folder.isEmpty() && ::access(QFile::encodeName(folder).constData(), W_OK) == 0;
}

} // namespace

Places forProgram(const QString &startedAs, const QString &icon)
{
    const QFileInfo started(startedAs);
    const QString beside = started.absolutePath();
    return Places{started.canonicalFilePath(),
                  isWritableFolder(beside) ? beside : QDir::homePath() + QStringLiteral("/.local/bin"),
                  DesktopEntry::userFolder(), icon};
}

Copy copyAt(const QString &name, const Places &places)
{
    return Copy{places.linkFolder + u'/' + name,
                places.entryFolder + u'/' + DesktopEntry::idForCopy(name) + QStringLiteral(".desktop")};
}

std::optional<QString> refusal(const QString &name, const Places &places)
{
    if (name.trimmed().isEmpty())
        return QStringLiteral("Type a name for the new app.");
    if (name.contains(u'/'))
        return QStringLiteral("A name can't contain “/”. Choose a name without it.");
    // The format can write it ("%%"), but GLib's launchers then look for a program named with
    // "%%" and can't start the entry.
    if (name.contains(u'%'))
        return QStringLiteral("A name can't contain “%”: desktops couldn't start the app. Choose a name without it.");
    if (name.startsWith(u'.'))
        return QStringLiteral("A name can't start with a dot.");
    if (name != name.trimmed())
        return QStringLiteral("A name can't start or end with a space.");
    for (const QChar c : name) {
        if (c.category() == QChar::Other_Control)
            return QStringLiteral("A name can't contain tabs or line breaks.");
    }
    if (name.toUtf8().size() > longestName)
        return QStringLiteral("That name is too long. Choose a shorter one.");
    // A copy is named by its file name less what follows the last dot.
    if (const QString opensAs = Workspace::nameFromExecutable(name, {}); opensAs != name)
        return QStringLiteral("“%1” would open as “%2”, since what follows the last dot counts as an extension. "
                              "Choose a name without that dot.")
            .arg(name, opensAs);

    const Copy copy = copyAt(name, places);
    if (QFileInfo::exists(Workspace::forName(name).root) || QFileInfo::exists(copy.entry))
        return QStringLiteral("There is already an app named “%1”. Choose another name.").arg(name);
    if (QFileInfo(copy.link).exists() || QFileInfo(copy.link).isSymLink())
        return QStringLiteral("“%1” already exists. Choose another name.").arg(copy.link);
    // A link in a folder on PATH would hide a command of the same name.
    if (const QString command = QStandardPaths::findExecutable(name); !command.isEmpty())
        return QStringLiteral("“%1” is already the name of a command (%2). Choose another name.").arg(name, command);
    return std::nullopt;
}

Copy make(const QString &name, const Places &places)
{
    if (const auto words = refusal(name, places))
        throw Failure(*words);
    const Copy copy = copyAt(name, places);
    if (!QDir().mkpath(places.linkFolder))
        throw Failure(QStringLiteral("Couldn't create the folder “%1”.").arg(places.linkFolder));
    if (!QFile::link(places.program, copy.link))
        throw Failure(QStringLiteral("Couldn't make the link “%1”.").arg(copy.link));

    QDir().mkpath(places.entryFolder);
    const QString entry = DesktopEntry::text({name, copy.link, places.icon});
    if (const auto error = AtomicFile::write(copy.entry, entry.toUtf8())) {
        QFile::remove(copy.link);
        throw Failure(QStringLiteral("Couldn't add “%1” to the applications menu: %2").arg(name, *error));
    }
    return copy;
}

std::optional<QString> start(const Copy &copy)
{
    if (!QProcess::startDetached(copy.link, {}, QDir::homePath()))
        return QStringLiteral("“%1” was made but didn't start. Open it from the applications menu.")
            .arg(QFileInfo(copy.link).fileName());
    return std::nullopt;
}

} // namespace zentoro::NewCopy
