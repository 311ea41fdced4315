#pragma once

#include "agent/AgentOperations.h"
#include "agent/ChatItem.h"
#include "agent/SavedConversation.h"
#include "core/MainTask.h"
#include "core/JSON.h"
#include "model_service/Provider.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUuid>

#include <optional>

namespace zentoro {

class Runtime;

// The spine of the program: the open conversation, the user's messages, and the run
// that drives the model step by step, carries out its tool calls and shows each as a row.
//
// `items` is what the user sees; `history` and `pendingInput` are what the model has
// been or will be given. Neither is derived from the other.
class Agent : public QObject {
    Q_OBJECT
public:
    static constexpr int stepLimit = 80;
    using Saved = SavedConversation;

    explicit Agent(QObject *parent = nullptr);
    // With `operations` in place of the program's own (tests drive the run with fakes).
    Agent(AgentOperations operations, QObject *parent = nullptr);

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
    std::optional<QString> previousResponseID;
    QList<JSON> history;
    QList<JSON> pendingInput;
    QStringList notes;
    std::optional<QString> restartCallID;
    QStringList unansweredCalls;
    QString currentRequest;
    QDateTime createdAt = QDateTime::currentDateTimeUtc();

    // The runtime whose state the model is told of and whose loaded version a restart reports.
    QPointer<Runtime> runtime;

    TaskHandle task() const { return task_; }
    AgentOperations &operations() { return operations_; }

    // Takes the user's words and starts a run; does nothing for blank text or while a run goes on.
    void send(const QString &text);
    // Starts a run of `loop` as a task on the main thread.
    void start();
    // Does `work` once the present run has stopped, stopping it first; at once when idle.
    void afterStopping(std::function<void()> work);
    // Called as each output item of a response starts; only moves `activity`.
    void started(const JSON &item);

    // Tells the user of an event at once with `shown`, and the model later with `told`.
    void note(const QString &shown, const QString &told);

    // Whether the last run ended in an error and its input still waits to go out again.
    bool canRetry() const;
    // Sends the waiting input again; nothing while a run goes on or nothing waits.
    void retry();

    // Conversations on disk. `writeConversation` writes the open one and patches the list;
    // the program's `save` operation is this.
    void writeConversation();
    void showDiskFull(const std::optional<QString> &error);
    Saved saved() const;
    // Replaces the working copy; touches neither the disk nor the list.
    void load(const Saved &saved);
    // Reopens the conversation that the copy's settings name.
    void restore();
    // Rebuilds the list from the folder, newest first.
    void refreshConversations();
    void openConversation(const QUuid &id);
    void newConversation();
    // Once per process after the launch: answers the calls a crash or quit left open and
    // goes on with the turn when the agent itself asked for the restart.
    void resumeAfterLaunch();

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

private:
    QCoro::Task<> loop(TaskHandle self);
    // Carries out the calls of one response; returns true when the run ended in a restart.
    QCoro::Task<bool> runCalls(const TaskHandle &self, const QList<JSON> &calls);
    void record(const JSON &response, Provider provider);
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
    TaskHandle task_;
    AgentOperations operations_;
};

} // namespace zentoro
