#include "agent/BuildTools.h"

#include "agent/Agent.h"
#include "agent/LogTail.h"
#include "agent/ScreenshotReference.h"
#include "core/AtomicFile.h"
#include "core/DataURL.h"
#include "runtime/CrashLog.h"
#include "runtime/Runtime.h"
#include "runtime/Workspace.h"

#include <QDir>
#include <QPointer>

#include <cstdio>

namespace zentoro::BuildTools {

namespace {

ChatItem row(const QString &text, const char *symbol)
{
    return ChatItem::make(ChatItem::Kind::Tool, text, QString::fromLatin1(symbol));
}

QString summaryFor(const Agent &agent)
{
    return agent.currentRequest().isEmpty() ? QStringLiteral("Agent build") : agent.currentRequest();
}

void announce(Agent &agent, const char *activity)
{
    agent.setActivity(QString::fromUtf8(activity));
}

ToolResult nothingToCapture()
{
    return Tools::fail(QStringLiteral("Nothing to capture: no version is showing in a window."),
                       QStringLiteral("Couldn't take a screenshot"));
}

QString screenshotFolder(const Runtime &runtime)
{
    return runtime.workspace().build() + QStringLiteral("/Screenshots");
}

ToolResult unavailable()
{
    return Tools::fail(QStringLiteral("The app runtime has gone away."), QStringLiteral("Tool failed"));
}

// As the C library's "%.1f" writes it, which is how the seconds are shown everywhere.
QString oneDecimal(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.1f", value);
    return QString::fromLatin1(text);
}

QString whichArgument(const JSON &arguments)
{
    return arguments.stringAt(QStringLiteral("which")).value_or(QString());
}

} // namespace

ToolResult buildResult(const BuildOutcome &outcome)
{
    if (const BuildOutcome::Success *success = outcome.success()) {
        QString output =
            QStringLiteral("Build succeeded. Version %1 is now running in the window.").arg(success->version);
        ChatItem item =
            row(QStringLiteral("Built version %1 in %2s").arg(success->version).arg(oneDecimal(success->seconds)),
                "hammer");
        if (!success->warnings.isEmpty()) {
            output += QStringLiteral("\nCompiler warnings:\n") + success->warnings;
            item.detail = success->warnings;
        }
        return ToolResult{JSON(output), item};
    }
    const QString &compilerOutput = outcome.failure()->text;
    const qsizetype errors = compilerOutput.count(QStringLiteral(": error: "));
    const QString title = errors == 0   ? QStringLiteral("Build failed")
                          : errors == 1 ? QStringLiteral("Build failed (1 error)")
                                        : QStringLiteral("Build failed (%1 errors)").arg(errors);
    ChatItem item = row(title, "xmark.octagon");
    item.detail = compilerOutput;
    item.failed = true;
    return ToolResult{JSON(QStringLiteral("Build failed. The running app is unchanged.\n") + compilerOutput), item};
}

ToolResult screenshotResult(const QByteArray &png, const QString &folder)
{
    QDir().mkpath(folder);
    const QString path = folder + u'/' + uuidText(QUuid::createUuid()) + QStringLiteral(".png");
    const bool stored = !AtomicFile::write(path, png).has_value();
    // The conversation keeps a reference; the picture itself goes out only with a request.
    const QString imageURL = stored ? ScreenshotReference::fromFile(path)
                                    : DataURL::make(QLatin1StringView("image/png"), png);
    JSON output = JSON::array({
        JSON::object({{QStringLiteral("type"), JSON(QStringLiteral("input_text"))},
                      {QStringLiteral("text"), JSON(QStringLiteral("Screenshot of the app as it looks now:"))}}),
        JSON::object({{QStringLiteral("type"), JSON(QStringLiteral("input_image"))},
                      {QStringLiteral("image_url"), JSON(imageURL)}}),
    });
    ChatItem item = row(QStringLiteral("Took a screenshot"), "camera");
    if (stored)
        item.imagePath = path;
    return ToolResult{std::move(output), item};
}

QCoro::Task<ToolResult> build(Agent &agent, Runtime &runtime)
{
    announce(agent, "Building…");
    const QString summary = summaryFor(agent);
    const BuildOutcome outcome = co_await runtime.build(summary);
    co_return buildResult(outcome);
}

QCoro::Task<ToolResult> screenshot(Agent &agent, Runtime &runtime)
{
    announce(agent, "Looking at the app…");
    QPointer<Runtime> alive(&runtime);
    // A stop cuts the wait short; the picture is taken all the same.
    const TaskHandle task = agent.task();
    co_await sleep(task, screenshotDelay);
    if (!alive)
        co_return nothingToCapture();
    const std::optional<QByteArray> png = alive->snapshot(screenshotWidth);
    if (!png)
        co_return nothingToCapture();
    co_return screenshotResult(*png, screenshotFolder(*alive));
}

ToolResult readLog(const Workspace &workspace, const QString &which)
{
    const CrashLog::Which log = CrashLog::which(which).value_or(CrashLog::Which::Current);
    QString text = LogTail::read(CrashLog::url(log, workspace.logs()));
    if (text.isEmpty())
        text = QStringLiteral("(no such log)");
    const QString title = log == CrashLog::Which::Previous ? QStringLiteral("Read the previous run's log")
                          : log == CrashLog::Which::Crash  ? QStringLiteral("Read the crash log")
                                                           : QStringLiteral("Read the log");
    ChatItem item = row(title, "text.alignleft");
    item.detail = Tools::limited(text);
    return ToolResult{JSON(text), item};
}

Tools::RuntimeTools runtimeTools(Runtime &runtime)
{
    QPointer<Runtime> weak(&runtime);
    Tools::RuntimeTools tools;
    tools.build = [weak](Agent &agent, JSON) -> QCoro::Task<ToolResult> {
        if (!weak)
            co_return unavailable();
        co_return co_await build(agent, *weak);
    };
    tools.screenshot = [weak](Agent &agent, JSON) -> QCoro::Task<ToolResult> {
        if (!weak)
            co_return unavailable();
        co_return co_await screenshot(agent, *weak);
    };
    tools.readLog = [weak](Agent &, JSON arguments) -> QCoro::Task<ToolResult> {
        if (!weak)
            co_return unavailable();
        co_return readLog(weak->workspace(), whichArgument(arguments));
    };
    return tools;
}

} // namespace zentoro::BuildTools
