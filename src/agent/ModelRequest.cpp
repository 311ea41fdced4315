#include "agent/ModelRequest.h"

#include "agent/Agent.h"
#include "agent/ChatItem.h"
#include "agent/HistoryUpkeep.h"
#include "agent/Instructions.h"
#include "model_service/AgentConfig.h"
#include "runtime/Workspace.h"

#include <limits>

namespace zentoro::ModelRequest {

namespace {

// Screenshots that a whole conversation carries; a chained request keeps all of its own.
constexpr qsizetype wholeScreenshotKeep = 3;
constexpr qsizetype chainedScreenshotKeep = std::numeric_limits<qsizetype>::max();

using HistoryUpkeep::attachingScreenshots;

QString missingKeyMessage()
{
    return QStringLiteral("Add your OpenAI API key first in Settings (Ctrl+,).");
}

// The plan's access token comes with a signed-in ChatGPT account; without one there is none.
QString signInMessage()
{
    return QStringLiteral("Sign in with ChatGPT first in Settings (Ctrl+,).");
}

JSON::Array toArray(const QList<JSON> &list)
{
    return JSON::Array(list.begin(), list.end());
}

JSON::Object properties(std::initializer_list<std::pair<QString, JSON>> pairs)
{
    return *JSON::object(pairs).objectValue();
}

JSON buildFunctions()
{
    const QString anyPath = QStringLiteral("Path relative to the source folder.");
    JSON::Array list{
        function(QStringLiteral("list_files"), QStringLiteral("List the app's source files with their line counts."),
                 {}),
        function(QStringLiteral("read_file"), QStringLiteral("Read a source file."),
                 properties({{QStringLiteral("path"),
                              string(QStringLiteral("Path relative to the source folder, e.g. \"AppRoot.swift\"."))}})),
        function(QStringLiteral("write_file"), QStringLiteral("Create a file or replace its whole content."),
                 properties({{QStringLiteral("path"),
                              string(QStringLiteral("Path relative to the source folder, e.g. \"TodoStore.swift\"."))},
                             {QStringLiteral("content"), string(QStringLiteral("The complete new content."))}})),
        function(QStringLiteral("edit_file"),
                 QStringLiteral("Replace one exact occurrence of old_text in a file with new_text. old_text must "
                                "appear exactly once, so include enough surrounding lines, with the exact whitespace."),
                 properties({{QStringLiteral("path"), string(anyPath)},
                             {QStringLiteral("old_text"), string(QStringLiteral("The exact text to replace."))},
                             {QStringLiteral("new_text"), string(QStringLiteral("The replacement."))}})),
        function(QStringLiteral("delete_file"), QStringLiteral("Delete a source file."),
                 properties({{QStringLiteral("path"), string(anyPath)}})),
        function(QStringLiteral("build"),
                 QStringLiteral("Compile all sources into a new version of the app. On success, the new version "
                                "replaces the running UI immediately. On failure, returns the compiler errors "
                                "(nothing changes in the running app)."),
                 {}),
        function(QStringLiteral("screenshot"),
                 QStringLiteral("Capture what the app currently shows in Zentoro's window (not this chat), to check "
                                "your work visually."),
                 {}),
        function(QStringLiteral("read_log"),
                 QStringLiteral("Read the end of the app's console log: print() output, Swift fatal error messages "
                                "and crash backtraces."),
                 properties({{QStringLiteral("which"),
                              JSON::object({
                                  {QStringLiteral("type"), "string"},
                                  {QStringLiteral("enum"), JSON::array({"current", "previous", "crash"})},
                                  {QStringLiteral("description"),
                                   QStringLiteral("\"current\" for this run, \"previous\" for the run before the last "
                                                  "restart, \"crash\" for the most recent run that crashed.")},
                              })}})),
        function(QStringLiteral("restart_app"),
                 QStringLiteral("Quit and relaunch Zentoro, loading the latest version into a fresh process. The "
                                "conversation continues after the restart."),
                 {}),
    };
    return JSON(std::move(list));
}

} // namespace

QCoro::Task<QString> bearer(const TaskHandle &task, Provider provider, bool refresh, QPointer<PlanAccess> plan)
{
    Q_UNUSED(task);
    if (provider == Provider::ChatGPT) {
        if (!plan)
            throw Failure(signInMessage());
        co_return co_await plan->accessToken(refresh);
    }
    const std::optional<QString> key = AgentConfig::effectiveKey();
    if (!key)
        throw Failure(missingKeyMessage());
    co_return *key;
}

JSON request(const Agent &agent, Provider provider)
{
    const Workspace &workspace = agent.workspace();
    return body(Instructions::instructions(workspace.name, workspace.data()), provider, agent.history(),
                agent.pendingInput(), agent.previousResponseID(), agent.conversationID());
}

JSON body(const QString &instructions, Provider provider, const QList<JSON> &history, const QList<JSON> &pendingInput,
          const std::optional<QString> &previousResponseID, const QUuid &conversationID)
{
    const bool chained = provider == Provider::APIKey && previousResponseID.has_value();
    JSON::Array input;
    if (chained) {
        input = attachingScreenshots(toArray(pendingInput), chainedScreenshotKeep);
    } else {
        input = HistoryUpkeep::sendable(history, pendingInput, wholeScreenshotKeep);
    }

    JSON body = JSON::object({
        {QStringLiteral("model"), AgentConfig::model()},
        {QStringLiteral("instructions"), instructions},
        {QStringLiteral("input"), JSON(std::move(input))},
        {QStringLiteral("tools"), tools()},
        {QStringLiteral("stream"), true},
        {QStringLiteral("include"), JSON::array({"reasoning.encrypted_content"})},
        {QStringLiteral("prompt_cache_key"), uuidText(conversationID)},
    });
    if (provider == Provider::APIKey) {
        body.set(QStringLiteral("truncation"), "auto");
        if (chained)
            body.set(QStringLiteral("previous_response_id"), *previousResponseID);
    } else {
        body.set(QStringLiteral("store"), false);
    }
    const QString effort = AgentConfig::reasoningEffort();
    if (!effort.isEmpty())
        body.set(QStringLiteral("reasoning"), JSON::object({{QStringLiteral("effort"), effort}}));
    return body;
}

const JSON &tools()
{
    static const JSON catalog = JSON::array({JSON::object({
        {QStringLiteral("type"), "namespace"},
        {QStringLiteral("name"), "zentoro"},
        {QStringLiteral("description"),
         "Zentoro's tools for the app: its source files, builds, screenshots, logs, restarts."},
        {QStringLiteral("tools"), functions()},
    })});
    return catalog;
}

const JSON &functions()
{
    static const JSON list = buildFunctions();
    return list;
}

JSON function(const QString &name, const QString &description, const JSON::Object &properties)
{
    // An object's keys come in ascending order, the order `required` is sent in.
    JSON::Array required;
    for (const auto &entry : properties)
        required.push_back(entry.first);
    return JSON::object({
        {QStringLiteral("type"), "function"},
        {QStringLiteral("name"), name},
        {QStringLiteral("description"), description},
        {QStringLiteral("strict"), true},
        {QStringLiteral("parameters"), JSON::object({
                                           {QStringLiteral("type"), "object"},
                                           {QStringLiteral("properties"), JSON(properties)},
                                           {QStringLiteral("required"), JSON(std::move(required))},
                                           {QStringLiteral("additionalProperties"), false},
                                       })},
    });
}

JSON string(const QString &description)
{
    return JSON::object({{QStringLiteral("type"), "string"}, {QStringLiteral("description"), description}});
}

} // namespace zentoro::ModelRequest
