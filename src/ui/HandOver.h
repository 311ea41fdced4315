#pragma once

#include "runtime/Workspace.h"

#include <QObject>

#include <chrono>

class QLocalServer;
class QThread;

namespace zentoro::HandOver {

// The local socket of a copy: named from its settings suite, with a digest of its folder so that
// two data folders with a copy of the same name don't meet; in the user's runtime folder.
QString serverName(const Workspace &workspace);

// Asks the process that runs `workspace` to bring its window to the front; true once it answered.
bool askRunningCopy(const Workspace &workspace, std::chrono::milliseconds timeout = std::chrono::seconds(3));

// The alert for a copy whose folder is in use by a process that didn't answer.
void showAlreadyOpen(const QString &name);

// Asks the running copy to come forward, or tells the user that its files are in use. A second
// process of a copy ends after this, with status 0 either way.
void deferToRunningCopy(const Workspace &workspace);

// The running copy's side: answers each second process and asks for the window. It listens
// and answers on a thread of its own, so a second start is answered at once even while this
// process is busy starting up or stuck in hosted code; `raiseRequested` reaches the main
// thread whenever it is free again.
class Listener : public QObject {
    Q_OBJECT
public:
    explicit Listener(const Workspace &workspace, QObject *parent = nullptr);
    ~Listener() override;
    bool isListening() const { return listening_; }

signals:
    void raiseRequested();

private:
    QThread *thread_;
    QLocalServer *server_;
    bool listening_ = false;
};

} // namespace zentoro::HandOver
