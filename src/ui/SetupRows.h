#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;

namespace zentoro {

class Agent;
class ChatGPT;
class ChatGPTSignIn;
class Runtime;
class Spinner;

// The compiler's state in one row: looking, ready, missing, installing or not working, with
// what the user can do about it.
class ToolchainRow : public QWidget {
    Q_OBJECT
public:
    explicit ToolchainRow(Runtime &runtime, QWidget *parent = nullptr);

    QString title() const;
    QString detail() const;
    QPushButton *actionButton() const { return action_; }

protected:
    void changeEvent(QEvent *event) override;

private:
    void sync();

    Runtime &runtime_;
    QStackedWidget *icon_;
    QLabel *symbol_;
    QLabel *title_;
    QLabel *detail_;
    QPushButton *action_;
};

// How the agent reaches the model: the plan or the key in use, or the ways to connect: signing
// in with ChatGPT and the field to paste a key into.
class AgentAccessRow : public QWidget {
    Q_OBJECT
public:
    explicit AgentAccessRow(Agent &agent, QWidget *parent = nullptr);

    QString title() const;
    QString detail() const;
    QLineEdit *keyField() const { return key_; }
    QPushButton *saveButton() const { return save_; }
    ChatGPTSignIn *signIn() const { return signIn_; }
    QString error() const;
    // Saves the typed key for every copy; on success the field empties and the row shows the key in use.
    void save();

protected:
    void changeEvent(QEvent *event) override;

private:
    void sync();

    Agent &agent_;
    ChatGPT &chatgpt_;
    ChatGPTSignIn *signIn_ = nullptr;
    QLabel *symbol_;
    QLabel *title_;
    QLabel *detail_;
    QWidget *entry_;
    QLineEdit *key_;
    QPushButton *save_;
    QLabel *error_;
};

} // namespace zentoro
