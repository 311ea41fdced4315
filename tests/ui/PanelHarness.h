#pragma once

#include "agent/Agent.h"
#include "model_service/Failures.h"
#include "support/Await.h"
#include "support/FakeAgent.h"
#include "support/FakePlan.h"
#include "ui/AgentPanel.h"
#include "ui/LazyColumn.h"
#include "ui/TranscriptRows.h"

#include <QLabel>
#include <QNetworkReply>

#include <gtest/gtest.h>

#include <optional>

namespace zentoro::test {

// The texts of a row's labels, its own first when it is one, a line each.
inline QString labelTexts(QWidget *row)
{
    if (!row)
        return {};
    QList<QLabel *> labels = row->findChildren<QLabel *>();
    if (auto *label = qobject_cast<QLabel *>(row))
        labels.prepend(label);
    QStringList texts;
    for (const QLabel *label : labels)
        texts << label->text();
    return texts.join(u'\n');
}

// An Agent whose model answers when the test lets it, or fails, and whose tools are fakes:
// the panel sees the states of a real run.
struct PanelHarness {
    bool released = false;
    bool failNext = false;
    std::optional<Provider> available = Provider::APIKey;
    FakePlan plan;
    Agent agent;

    PanelHarness() : agent(operations())
    {
        plan.usable = [this] { return available == Provider::ChatGPT; };
        agent.setPlan(&plan);
    }

    AgentOperations operations()
    {
        AgentOperations ops = fakeOperations();
        ops.hasAPIKey = [this] { return available == Provider::APIKey; };
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
            const JSON answer = response({textMessage(QString::fromUtf8("Done **now**."))});
            co_return answer;
        };
        ops.perform = [](const QString &, const JSON &) -> QCoro::Task<ToolResult> {
            co_return ToolResult{JSON("ok"), ChatItem::make(ChatItem::Kind::Tool, QStringLiteral("Did it"))};
        };
        return ops;
    }

    bool finish()
    {
        released = true;
        return spinUntil([this] { return !agent.isRunning(); });
    }
};

// The agent panel over a harness, shown at the width of the window's side bar, holding `items`.
struct ShownPanel {
    PanelHarness harness;
    AgentPanel panel{harness.agent};

    explicit ShownPanel(const QList<ChatItem> &items = {})
    {
        harness.agent.setItems(items);
        panel.resize(380, 700);
        panel.show();
        panel.transcript()->layoutNow();
    }

    QWidget *row(qsizetype index) { return panel.transcript()->rowWidget(index); }
    ToolRow *toolRow(qsizetype index) { return qobject_cast<ToolRow *>(row(index)); }

    // The texts of the transcript's rows, as "kind: text".
    QStringList rows() const { return rowTexts(harness.agent); }
};

} // namespace zentoro::test
