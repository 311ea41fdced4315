#include "agent/FileTools.h"

#include "agent/Agent.h"
#include "agent/Tools.h"
#include "core/AtomicFile.h"
#include "runtime/Workspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace zentoro::FileTools {

namespace {

using Failure = Workspace::Failure;

ChatItem row(const QString &text, const char *symbol, std::optional<QString> detail = std::nullopt)
{
    ChatItem item = ChatItem::make(ChatItem::Kind::Tool, text, QString::fromLatin1(symbol));
    item.detail = std::move(detail);
    return item;
}

// The whole text of the file at `file`, or a Failure naming `path` in words the model
// can act on.
QString readText(const QString &file, const QString &path)
{
    const QFileInfo info(file);
    if (!info.exists())
        throw Failure(QStringLiteral("There's no file at %1.").arg(path));
    if (info.isDir())
        throw Failure(QStringLiteral("%1 is a folder, not a file.").arg(path));
    if (info.size() > readLimit)
        throw Failure(QStringLiteral("%1 is too large to read: %2 bytes. Files of up to 16 MB can be read.")
                          .arg(path, QString::number(info.size())));
    QFile handle(file);
    if (!handle.open(QIODevice::ReadOnly))
        throw Failure(QStringLiteral("Couldn't read %1: %2.").arg(path, handle.errorString()));
    const QByteArray bytes = handle.readAll();
    // Stateless, so a sequence cut off at the end counts as an error too.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        throw Failure(QStringLiteral("%1 isn't UTF-8 text.").arg(path));
    return text;
}

void writeText(const QString &file, const QString &path, const QString &text)
{
    if (QFileInfo(file).isDir())
        throw Failure(QStringLiteral("%1 is a folder, not a file.").arg(path));
    if (!QDir().mkpath(QFileInfo(file).path()))
        throw Failure(QStringLiteral("Couldn't make the folder for %1.").arg(path));
    if (auto error = AtomicFile::write(file, text.toUtf8()))
        throw Failure(QStringLiteral("Couldn't write %1: %2.").arg(path, *error));
}

// Where `needle` stands in `text`, searched literally from the front without overlap.
QList<qsizetype> occurrences(const QString &text, const QString &needle)
{
    QList<qsizetype> found;
    for (qsizetype at = text.indexOf(needle); at >= 0; at = text.indexOf(needle, at + needle.size()))
        found.append(at);
    return found;
}

QString diff(const QString &oldText, const QString &newText)
{
    QStringList lines;
    for (const QString &line : oldText.split(u'\n'))
        lines.append(QStringLiteral("- ") + line);
    for (const QString &line : newText.split(u'\n'))
        lines.append(QStringLiteral("+ ") + line);
    return lines.join(u'\n');
}

ToolResult failed(const Failure &failure, const char *tool)
{
    return Tools::fail(failure.message, QStringLiteral("%1 failed").arg(QString::fromLatin1(tool)));
}

} // namespace

std::optional<qsizetype> linesIn(const QString &file)
{
    QFile handle(file);
    if (!handle.open(QIODevice::ReadOnly))
        return std::nullopt;
    const qint64 size = handle.size();
    if (size == 0)
        return 1;
    const uchar *mapped = handle.map(0, size);
    if (!mapped)
        return std::nullopt;
    // In UTF-8 a line feed byte is always a line feed.
    const QByteArrayView bytes(mapped, size);
    if (!bytes.isValidUtf8())
        return std::nullopt;
    return bytes.count('\n') + 1;
}

QStringList described(const Workspace &workspace, qsizetype unreadableLines)
{
    const QStringList files = workspace.files();
    QStringList lines;
    for (const QString &file : files.mid(0, listedLimit)) {
        const qsizetype count = linesIn(file).value_or(unreadableLines);
        lines.append(workspace.relativePath(file) + QStringLiteral(" (") + QString::number(count) +
                     QStringLiteral(" lines)"));
    }
    if (files.size() > listedLimit)
        lines.append(QStringLiteral("… and %1 more files").arg(files.size() - listedLimit));
    return lines;
}

ToolResult listFiles(Agent &agent, const Workspace &workspace)
{
    agent.setActivity(QStringLiteral("Looking around…"));
    // An unreadable file still shows, as empty text.
    const QStringList lines = described(workspace, 1);
    const QString listing = lines.join(u'\n');
    return ToolResult{JSON(lines.isEmpty() ? QStringLiteral("(no files)") : listing),
                      row(QStringLiteral("Listed the files"), "folder", Tools::limited(listing))};
}

ToolResult readFile(Agent &agent, const Workspace &workspace, const QString &path)
{
    agent.setActivity(QStringLiteral("Reading %1…").arg(path));
    try {
        const QString text = readText(workspace.resolve(path), path.trimmed());
        return ToolResult{JSON(text.isEmpty() ? QStringLiteral("(empty file)") : text),
                          row(QStringLiteral("Read %1").arg(path), "doc.text")};
    } catch (const Failure &failure) {
        return failed(failure, "read_file");
    }
}

ToolResult writeFile(Agent &agent, const Workspace &workspace, const QString &path, const QString &content)
{
    agent.setActivity(QStringLiteral("Writing %1…").arg(path));
    try {
        const QString file = workspace.resolve(path);
        const bool existed = QFileInfo::exists(file);
        writeText(file, path.trimmed(), content);
        return ToolResult{
            JSON(QStringLiteral("Wrote %1 (%2 lines).").arg(path, QString::number(Tools::lineCount(content)))),
            row((existed ? QStringLiteral("Rewrote %1") : QStringLiteral("Created %1")).arg(path), "square.and.pencil",
                Tools::limited(content))};
    } catch (const Failure &failure) {
        return failed(failure, "write_file");
    }
}

ToolResult editFile(Agent &agent, const Workspace &workspace, const QString &path, const QString &oldText,
                    const QString &newText)
{
    agent.setActivity(QStringLiteral("Editing %1…").arg(path));
    try {
        const QString file = workspace.resolve(path);
        QString text = readText(file, path.trimmed());
        const QString title = QStringLiteral("Couldn't edit %1").arg(path);
        if (oldText.isEmpty())
            return Tools::fail(QStringLiteral("old_text is empty."), title);
        const QList<qsizetype> found = occurrences(text, oldText);
        if (found.isEmpty())
            return Tools::fail(QStringLiteral("old_text wasn't found in %1. Read the file again and copy the text "
                                              "exactly, including whitespace.")
                                   .arg(path),
                               title);
        if (found.size() > 1)
            return Tools::fail(
                QStringLiteral("old_text appears %1 times in %2. Include more surrounding lines so it matches once.")
                    .arg(QString::number(found.size()), path),
                title);
        text.replace(found.first(), oldText.size(), newText);
        writeText(file, path.trimmed(), text);
        return ToolResult{JSON(QStringLiteral("Edited %1.").arg(path)),
                          row(QStringLiteral("Edited %1").arg(path), "pencil", Tools::limited(diff(oldText, newText)))};
    } catch (const Failure &failure) {
        return failed(failure, "edit_file");
    }
}

ToolResult deleteFile(const Workspace &workspace, const QString &path)
{
    try {
        const QString file = workspace.resolve(path);
        const QFileInfo info(file);
        // A link is removed itself, never what it leads to; a folder goes with all it holds,
        // the links in it removed the same way.
        if (!info.isSymLink() && !info.exists())
            throw Failure(QStringLiteral("There's no file at %1.").arg(path.trimmed()));
        if (info.isDir() && !info.isSymLink()) {
            if (!QDir(file).removeRecursively())
                throw Failure(QStringLiteral("Couldn't delete all of the folder %1.").arg(path.trimmed()));
        } else if (QFile handle(file); !handle.remove()) {
            throw Failure(QStringLiteral("Couldn't delete %1: %2.").arg(path.trimmed(), handle.errorString()));
        }
        return ToolResult{JSON(QStringLiteral("Deleted %1.").arg(path)),
                          row(QStringLiteral("Deleted %1").arg(path), "trash")};
    } catch (const Failure &failure) {
        return failed(failure, "delete_file");
    }
}

} // namespace zentoro::FileTools
