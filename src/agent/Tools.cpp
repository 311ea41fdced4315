#include "agent/Tools.h"

#include "agent/FileTools.h"
#include "core/Text.h"

namespace zentoro::Tools {

ToolResult fail(const QString &message, const QString &title)
{
    ChatItem item = ChatItem::make(ChatItem::Kind::Tool, title, QStringLiteral("exclamationmark.triangle"));
    item.detail = message;
    item.failed = true;
    return ToolResult{JSON(QStringLiteral("Error: ") + message), item};
}

QString limited(const QString &detail)
{
    const QString kept = Text::firstCharacters(detail, detailLimit);
    if (kept.size() == detail.size())
        return detail;
    return kept + QStringLiteral("\n…");
}

qsizetype lineCount(const QString &text)
{
    return text.count(u'\n') + 1;
}

QCoro::Task<ToolResult> perform(Agent &agent, const Workspace &workspace, RuntimeTools runtime, QString name,
                                JSON arguments)
{
    const QString path = arguments.stringAt(QStringLiteral("path")).value_or(QString());
    auto text = [&](const char *key) { return arguments.stringAt(QString::fromLatin1(key)).value_or(QString()); };

    if (name == u"list_files")
        co_return FileTools::listFiles(agent, workspace);
    if (name == u"read_file")
        co_return FileTools::readFile(agent, workspace, path);
    if (name == u"write_file")
        co_return FileTools::writeFile(agent, workspace, path, text("content"));
    if (name == u"edit_file")
        co_return FileTools::editFile(agent, workspace, path, text("old_text"), text("new_text"));
    if (name == u"delete_file")
        co_return FileTools::deleteFile(workspace, path);

    const RuntimeTools::Tool *tool = name == u"build"        ? &runtime.build
                                     : name == u"screenshot" ? &runtime.screenshot
                                     : name == u"read_log"   ? &runtime.readLog
                                                             : nullptr;
    if (tool && *tool)
        co_return co_await (*tool)(agent, arguments);
    if (tool)
        co_return fail(QStringLiteral("%1 isn't available in this build of Zentoro.").arg(name),
                       QStringLiteral("%1 failed").arg(name));
    co_return fail(QStringLiteral("There's no tool called %1.").arg(name), QStringLiteral("Unknown tool %1").arg(name));
}

} // namespace zentoro::Tools
