#pragma once

#include "agent/AgentOperations.h"
#include "agent/ChatItem.h"
#include "agent/PlanAccess.h"
#include "agent/SavedConversation.h"
#include "core/JSON.h"
#include "core/MainTask.h"
#include "model_service/Provider.h"
#include "runtime/Workspace.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUuid>

#include <optional>

namespace zentoro {

// The spine of the program: the open conversation, the user's messages, and the run
// that drives the model step by step, carries out its tool calls and shows each as a row.
//
// `items` is what the user sees; `history` and `pendingInput` are what the model has
// been or will be given. Neither is derived from the other. The agent alone changes them,
// through the operations below.
class Agent : public QObject {
    Q_OBJECT
public:
    static constexpr int stepLimit = 80;
    using Saved = SavedConversation;

    // An agent of the copy in `workspace` (none: a copy with no root keeps no conversations)
    // that starts with a blank conversation and calls `operations` in its runs. The program
    // puts in its own operations with `setOperations` and then calls `restore`.
    explicit Agent(AgentOperations operations, Workspace workspace = {}, QObject *parent = nullptr);

    // Observable state. A write that doesn't change a value notifies nobody.
    const QList<ChatItem> &items() const { return items_; }
    bool isRunning() const { return isRunning_; }
    std::optional<QDateTime> startedAt() const { return startedAt_; }
    std::optional<QString> activity() const { return activity_; }
    bool hasAPIKey() const { return hasAPIKey_; }
    std::optional<Provider> preferredProvider() const { return preferredProvider_; }
    const QList<ConversationSummary> &conversations() const { return conversations_; }
    QUuid conversationID() const { return conversationID_; }

    // Worked out on each read from the preference, the key and the plan.
    std::optional<Provider> provider() const;

    // The model's side of the conversation and the rest of its working state.
    const std::optional<QString> &previousResponseID() const { return previousResponseID_; }
    const QList<JSON> &history() const { return history_; }
    const QList<JSON> &pendingInput() const { return pendingInput_; }
    // What the model is to be told with the next message.
    const QStringList &notes() const { return notes_; }
    // The restart_app call whose answer waits for the next launch.
    const std::optional<QString> &restartCallID() const { return restartCallID_; }
    // The calls of the last response still owed an output.
    const QStringList &unansweredCalls() const { return unansweredCalls_; }
    // The user's words that started the present turn.
    const QString &currentRequest() const { return currentRequest_; }
    const QDateTime &createdAt() const { return createdAt_; }

    const Workspace &workspace() const { return workspace_; }
    TaskHandle task() const { return task_; }
    AgentOperations &operations() { return operations_; }
    void setOperations(AgentOperations operations);
    // The ChatGPT plan this agent may run on; none means only an API key can be used. A sign-in
    // that gets plan access makes the plan the preferred provider.
    PlanAccess *plan() const { return plan_; }
    void setPlan(PlanAccess *plan);

    // Takes the user's words and starts a run; does nothing for blank text or while a run goes on.
    void send(const QString &text);
    // Starts a run of `loop` as a task on the main thread.
    void start();
    // Does `work` once the present run has stopped, stopping it first; at once when idle.
    void afterStopping(std::function<void()> work);
    // Called as each output item of a response starts; only moves `activity`.
    void started(const JSON &item);
    // Puts the queued input and the response's output into history, each in the form
    // history keeps, and keeps the response's identity on the API-key path.
    void record(const JSON &response, Provider provider);

    // Repairs of the model's side after a failure; each says whether it changed anything.
    // Forgets the chained response; when history holds nothing of it, the outputs of its
    // calls go too and the model is told that earlier parts were lost.
    void dropResponseChain();
    // Drops the oldest turns of history to fit the model's context.
    bool trimHistory();
    // Takes the reasoning items out of history.
    bool dropReasoning();

    // Tells the user of an event at once with `shown`, and the model later with `told`.
    void note(const QString &shown, const QString &told);

    // Whether the last run ended in an error and its input still waits to go out again.
    bool canRetry() const;
    // Sends the waiting input again; nothing while a run goes on or nothing waits.
    void retry();

    // Conversations on disk. `writeConversation` writes the open one and patches the list;
    // the program's `save` operation is this.
    void writeConversation();
    Saved saved() const;
    // Replaces the working copy; touches neither the disk nor the list.
    void load(const Saved &saved);
    // At start-up: reopens the conversation that the copy's settings name and lists the rest.
    void restore();
    // Rebuilds the list from the folder, newest first.
    void refreshConversations();
    void openConversation(const QUuid &id);
    void newConversation();
    // Once per process after the launch: answers the calls a crash or quit left open and
    // goes on with the turn when the agent itself asked for the restart, telling the model
    // that `loadedVersion` now runs.
    void resumeAfterLaunch(std::optional<int> loadedVersion);

    void setPreferredProvider(std::optional<Provider> provider);
    void setActivity(std::optional<QString> activity);
    void setHasAPIKey(bool hasAPIKey);
    void appendItem(ChatItem item);
    void setItems(QList<ChatItem> items);
    void setConversations(QList<ConversationSummary> conversations);
    void setConversationID(const QUuid &id);

    // Input items the agent makes itself.
    static JSON message(const QString &role, const QString &text);
    static JSON output(const QString &callID, const JSON &value);

signals:
    void itemsChanged();
    void isRunningChanged();
    void startedAtChanged();
    void activityChanged();
    void hasAPIKeyChanged();
    void preferredProviderChanged();
    void conversationsChanged();
    void conversationIDChanged();
    // The plan became usable or stopped being so; `provider` may differ.
    void planChanged();

private:
    QCoro::Task<> loop(TaskHandle self);
    // Carries out the calls of one response; returns true when the run ended in a restart.
    QCoro::Task<bool> runCalls(const TaskHandle &self, const QList<JSON> &calls);
    void stopped();
    void showResponse(const JSON &response);
    void setRunning(bool running);
    void save();

    QList<ChatItem> items_;
    bool isRunning_ = false;
    std::optional<QDateTime> startedAt_;
    std::optional<QString> activity_;
    bool hasAPIKey_ = false;
    std::optional<Provider> preferredProvider_;
    QList<ConversationSummary> conversations_;
    QUuid conversationID_ = QUuid::createUuid();

    std::optional<QString> previousResponseID_;
    QList<JSON> history_;
    QList<JSON> pendingInput_;
    QStringList notes_;
    std::optional<QString> restartCallID_;
    QStringList unansweredCalls_;
    QString currentRequest_;
    QDateTime createdAt_ = QDateTime::currentDateTimeUtc();

    Workspace workspace_;
    TaskHandle task_;
    AgentOperations operations_;
    QPointer<PlanAccess> plan_;
};

} // namespace zentoro
