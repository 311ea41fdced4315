#pragma once

#include <QWidget>

class QButtonGroup;
class QLabel;
class QMenu;
class QPushButton;
class QToolButton;

namespace zentoro {

class Agent;
class ChatGPT;

// The ChatGPT part of the settings window's "Agent" section, whole: the account controls
// (sign-in, the wait for the browser, sign-out, the accounts menu), "Allow Plan Use…" when the
// account doesn't allow it, the choice between the plan and the API key when both can be used,
// and the note that requests use the plan. It asks for the plan's models when it appears.
class ChatGPTSettingsRows : public QWidget {
    Q_OBJECT
public:
    ChatGPTSettingsRows(ChatGPT &chatgpt, Agent &agent, QWidget *parent = nullptr);

    // The account controls' words now: "Waiting for your browser…", the account's label, or none.
    QString accountText() const;
    QPushButton *accountButton() const { return accountButton_; }
    QPushButton *cancelButton() const { return cancel_; }
    // "Use <label>" for each other account, then "Add Another Account…".
    QMenu *accountsMenu() const { return accountsMenu_; }
    QToolButton *accountsButton() const { return accounts_; }
    QPushButton *allowButton() const { return allow_; }
    // The provider picker; hidden unless both the plan and a key can be used.
    QWidget *providerPicker() const { return picker_; }
    QPushButton *planChoice() const { return planChoice_; }
    QPushButton *keyChoice() const { return keyChoice_; }
    QWidget *planNote() const { return planNote_; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void sync();
    void fillAccountsMenu();

    ChatGPT &chatgpt_;
    Agent &agent_;
    QWidget *waiting_;
    QLabel *label_;
    QPushButton *accountButton_;
    QPushButton *cancel_;
    QToolButton *accounts_;
    QMenu *accountsMenu_;
    QWidget *notAllowed_;
    QPushButton *allow_;
    QWidget *picker_;
    QPushButton *planChoice_;
    QPushButton *keyChoice_;
    QWidget *planNote_;
};

} // namespace zentoro
