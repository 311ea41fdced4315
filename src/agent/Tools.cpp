#include "agent/Tools.h"

#include "agent/FileTools.h"
#include "core/Text.h"

#include <optional>

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

namespace {

// The tools that work on the source folder; nothing when `name` is none of them.
std::optional<ToolResult> performFileTool(Agent &agent, const Workspace &workspace, const QString &name,
                                          const JSON &arguments)
{
    const QString path = arguments.stringAt(QStringLiteral("path")).value_or(QString());
    auto text = [&](const char *key) { return arguments.stringAt(QString::fromLatin1(key)).value_or(QString()); };
    if (name == u"list_files")
        return FileTools::listFiles(agent, workspace);
    if (name == u"read_file")
        return FileTools::readFile(agent, workspace, path);
    if (name == u"write_file")
        return FileTools::writeFile(agent, workspace, path, text("content"));
    if (name == u"edit_file")
        return FileTools::editFile(agent, workspace, path, text("old_text"), text("new_text"));
    if (name == u"delete_file")
        return FileTools::deleteFile(workspace, path);
    return std::nullopt;
}

const RuntimeTools::Tool *runtimeTool(const RuntimeTools &runtime, const QString &name)
{
    if (name == u"build")
        return &runtime.build;
    if (name == u"screenshot")
        return &runtime.screenshot;
    if (name == u"read_log")
        return &runtime.readLog;
    return nullptr;
}

ToolResult unavailable(const QString &name)
{
    return fail(QStringLiteral("%1 isn't available in this build of Zentoro.").arg(name),
                QStringLiteral("%1 failed").arg(name));
}

ToolResult unknown(const QString &name)
{
    return fail(QStringLiteral("There's no tool called %1.").arg(name), QStringLiteral("Unknown tool %1").arg(name));
}

} // namespace

QCoro::Task<ToolResult> perform(Agent &agent, const Workspace &workspace, const RuntimeTools &runtime,
                                const QString &name, const JSON &arguments)
{
    if (std::optional<ToolResult> result = performFileTool(agent, workspace, name, arguments))
        co_return std::move(*result);
    const RuntimeTools::Tool *tool = runtimeTool(runtime, name);
    if (!tool)
        co_return unknown(name);
    if (!*tool)
        co_return unavailable(name);
    co_return co_await (*tool)(agent, arguments);
}

} // namespace zentoro::Tools
