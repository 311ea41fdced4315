#include "FakeAgent.h"

#include "core/DescribedError.h"

namespace zentoro::test {

JSON textMessage(const QString &text)
{
    return JSON::object({{"type", "message"},
                         {"role", "assistant"},
                         {"content", JSON::array({JSON::object({{"type", "output_text"}, {"text", text}})})}});
}

JSON functionCall(const QString &callID, const QString &name, const QString &arguments)
{
    return JSON::object({{"type", "function_call"}, {"call_id", callID}, {"name", name}, {"arguments", arguments}});
}

JSON response(std::initializer_list<JSON> output, const QString &id)
{
    return JSON::object({{"id", id}, {"status", "completed"}, {"output", JSON::array(output)}});
}

AgentOperations fakeOperations()
{
    AgentOperations ops;
    ops.hasAPIKey = [] { return true; };
    ops.bearer = [](const TaskHandle &, Provider, bool) -> QCoro::Task<QString> { co_return QString::fromUtf8("key"); };
    ops.request = [](Provider) { return JSON::object(); };
    ops.respond = [](const TaskHandle &, const QString &, const JSON &,
                     const std::function<void(const JSON &)> &) -> QCoro::Task<JSON> {
        const JSON answer = response({textMessage(QString::fromUtf8("done"))});
        co_return answer;
    };
    ops.perform = [](const QString &, const JSON &) -> QCoro::Task<ToolResult> { co_return ToolResult{}; };
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

QStringList rowTexts(const Agent &agent)
{
    QStringList texts;
    for (const ChatItem &item : agent.items())
        texts.append(ChatItem::kindText(item.kind) + QStringLiteral(": ") + item.text);
    return texts;
}

QCoro::Task<JSON> respondOnlyToAStop(const TaskHandle &task, const QString &, const JSON &,
                                     const std::function<void(const JSON &)> &)
{
    co_await sleep(task, std::chrono::seconds(20));
    throw NetworkError(QNetworkReply::OperationCanceledError, QString::fromUtf8("cancelled"));
}

} // namespace zentoro::test
