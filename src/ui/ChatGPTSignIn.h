#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace zentoro {

class ChatGPT;

// The way into the ChatGPT plan on the setup screen and at the head of the agent panel: the
// button that starts a sign-in, the wait for the browser with its Cancel, or the request to
// allow plan use; under it the last sign-in's failure.
class ChatGPTSignIn : public QWidget {
    Q_OBJECT
public:
    explicit ChatGPTSignIn(ChatGPT &chatgpt, QWidget *parent = nullptr);

    // The words shown now, a line each: the state's and the failure's.
    QString text() const;
    QPushButton *actionButton() const { return action_; }
    QPushButton *cancelButton() const { return cancel_; }

private:
    void sync();

    ChatGPT &chatgpt_;
    QWidget *waiting_;
    QLabel *notAllowed_;
    QPushButton *action_;
    QPushButton *cancel_;
    QLabel *message_;
};

} // namespace zentoro
