#pragma once

#include "agent/Agent.h"
#include "model_service/Failures.h"
#include "support/Await.h"

#include <QNetworkReply>

#include <optional>

namespace zentoro::test {

// An Agent whose model answers when the test lets it, or fails, and whose tools are fakes:
// the panel sees the states of a real run.
struct PanelHarness {
    bool released = false;
    bool failNext = false;
    std::optional<Provider> available = Provider::APIKey;
    Agent agent;

    PanelHarness() : agent(operations()) {}

    AgentOperations operations()
    {
        AgentOperations ops;
        ops.hasAPIKey = [this] { return available == Provider::APIKey; };
        ops.canUsePlan = [this] { return available == Provider::ChatGPT; };
        ops.bearer = [](const TaskHandle &, Provider, bool) -> QCoro::Task<QString> { co_return QStringLiteral("key"); };
        ops.request = [](Provider) { return JSON::object(); };
        ops.respond = [this](const TaskHandle &task, const QString &, const JSON &,
                             const std::function<void(const JSON &)> &) -> QCoro::Task<JSON> {
            while (!released && !task.isCancelled())
                co_await sleep(task, std::chrono::milliseconds(5));
            released = false;
            // As an aborted network reply would.
            if (task.isCancelled())
                throw NetworkError(QNetworkReply::OperationCanceledError, QString::fromUtf8("cancelled"));
            if (failNext) {
                failNext = false;
                throw NetworkError(QNetworkReply::ConnectionRefusedError, QString::fromUtf8("Connection refused"));
            }
            co_return answer();
        };
        ops.perform = [](const QString &, const JSON &) -> QCoro::Task<ToolResult> {
            co_return ToolResult{JSON("ok"), ChatItem::make(ChatItem::Kind::Tool, QStringLiteral("Did it"))};
        };
        ops.forHistory = [](const JSON &item) -> std::optional<JSON> { return item; };
        ops.context = [] { return QStringLiteral("state note"); };
        ops.recover = [](const TaskHandle &, const OpenAI::Failure &, Provider, Recovery *) -> QCoro::Task<bool> {
            co_return false;
        };
        ops.errorItem = [](std::exception_ptr failure, Provider) {
            ChatItem item = ChatItem::make(ChatItem::Kind::Error, describe(failure));
            item.failed = true;
            return item;
        };
        ops.save = [] {};
        ops.relaunch = [](bool) {};
        return ops;
    }

    static JSON answer()
    {
        const JSON message = JSON::object(
            {{"type", "message"},
             {"role", "assistant"},
             {"content", JSON::array({JSON::object({{"type", "output_text"}, {"text", "Done **now**."}})})}});
        return JSON::object({{"id", "resp_1"}, {"status", "completed"}, {"output", JSON::array({message})}});
    }

    bool finish()
    {
        released = true;
        return spinUntil([this] { return !agent.isRunning(); });
    }
};

} // namespace zentoro::test
