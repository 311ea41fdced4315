#pragma once

#include "agent/ChatItem.h"
#include "ui/TranscriptRows.h"

#include <QFrame>
#include <QLabel>
#include <QSet>
#include <QToolButton>
#include <QUuid>
#include <QWidget>

namespace zentoro {

class Agent;
class AgentAccessRow;
class Composer;
class EmptyState;
class LazyColumn;
class WorkingRow;

// The side panel of the main window: the conversation with the agent and the field in which
// the user types. It shows the agent's state and holds nothing of its own but the draft.
class AgentPanel : public QWidget {
    Q_OBJECT
public:
    explicit AgentPanel(Agent &agent, QWidget *parent = nullptr);

    // Sends the draft when it can be sent, and empties it.
    void send();
    bool canSend() const;
    QString draft() const;

    LazyColumn *transcript() const { return transcript_; }
    Composer *composer() const { return composer_; }
    EmptyState *emptyState() const { return emptyState_; }
    // At the head of the transcript while no provider is available.
    AgentAccessRow *accessRow() const { return accessRow_; }
    QWidget *accessBox() const { return accessBox_; }
    WorkingRow *workingRow() const { return workingRow_; }
    // "Using ChatGPT plan · Manage usage", under the composer while the plan is the provider.
    QWidget *planRow() const { return planRow_; }
    QToolButton *conversationsButton() const { return conversations_; }
    QToolButton *newConversationButton() const { return newConversation_; }
    QToolButton *settingsButton() const { return settings_; }

    // Shows the model that requests ask for now.
    void syncModel();

signals:
    void settingsRequested();

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *makeHeader();
    QWidget *makePlanRow();
    void syncItems();
    void syncState();
    void updateHeaderIcons();
    QWidget *makeRow(qsizetype row);

    Agent &agent_;
    QList<ChatItem> shown_;
    QSet<QUuid> expanded_;
    RowActions actions_;
    QLabel *glyph_ = nullptr;
    QLabel *model_ = nullptr;
    QToolButton *conversations_ = nullptr;
    QToolButton *newConversation_ = nullptr;
    QToolButton *settings_ = nullptr;
    LazyColumn *transcript_ = nullptr;
    EmptyState *emptyState_ = nullptr;
    QFrame *accessBox_ = nullptr;
    AgentAccessRow *accessRow_ = nullptr;
    WorkingRow *workingRow_ = nullptr;
    Composer *composer_ = nullptr;
    QWidget *planRow_ = nullptr;
};

} // namespace zentoro
