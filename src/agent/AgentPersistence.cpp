#include "agent/Agent.h"

#include "agent/ConversationEncoder.h"
#include "core/AtomicFile.h"
#include "core/Defaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <csignal>

namespace zentoro {

namespace {

const QString currentConversationKey = QStringLiteral("currentConversation");

// An agent without a copy has nowhere to keep conversations.
bool hasCopy(const Workspace &workspace)
{
    return !workspace.root.isEmpty();
}

QString conversationsFolder(const Workspace &workspace)
{
    return workspace.root + QStringLiteral("/Conversations");
}

// Remembers the text of the last save, so that the next one encodes only what changed.
ConversationEncoder &encoder()
{
    static ConversationEncoder shared;
    return shared;
}

// The setting is written only when it changes: each write of it syncs a file.
void nameCurrent(const Workspace &workspace, const QUuid &id)
{
    const QString suite = workspace.defaultsSuite();
    const QString text = uuidText(id);
    if (Defaults::suiteValue(suite, currentConversationKey).toString() != text)
        Defaults::setSuiteValue(suite, currentConversationKey, text);
}

// For crash-safety testing: ZENTORO_KILL_AFTER_SAVES=<n> ends the process with SIGKILL right
// after its nth save, as a crash would; "0,<n>" does so in the process that the agent's
// restart starts next. Each process takes the first count at its first save, before it starts
// any other program, and hands the rest on through the environment.
void killIfAskedAfterSave()
{
    static int left = [] {
        const char *name = "ZENTORO_KILL_AFTER_SAVES";
        QList<QByteArray> counts = qgetenv(name).split(',');
        const int count = counts.takeFirst().toInt();
        if (counts.isEmpty())
            qunsetenv(name);
        else
            qputenv(name, counts.join(','));
        return count;
    }();
    if (left > 0 && --left == 0)
        std::raise(SIGKILL);
}

QString stoppedOutput()
{
    return QStringLiteral("Zentoro stopped (it crashed or was quit) before this finished.");
}

QString restartAnswer(std::optional<int> loadedVersion)
{
    const QString running = loadedVersion ? QStringLiteral("version %1.").arg(*loadedVersion)
                                          : QStringLiteral("no version (the window is empty).");
    return QStringLiteral("Zentoro restarted; it is now running ") + running;
}

} // namespace

Agent::Saved Agent::saved() const
{
    Saved saved;
    saved.id = conversationID_;
    saved.created = createdAt_;
    saved.updated = QDateTime::currentDateTimeUtc();
    saved.items = items_;
    saved.previousResponseID = previousResponseID_;
    saved.pendingInput = pendingInput_;
    saved.notes = notes_;
    saved.restartCallID = restartCallID_;
    saved.unansweredCalls = unansweredCalls_;
    saved.currentRequest = currentRequest_;
    saved.history = history_;
    return saved;
}

void Agent::writeConversation()
{
    if (!hasCopy(workspace_))
        return;
    const Saved current = saved();
    nameCurrent(workspace_, conversationID_);

    const QString path = workspace_.conversation(conversationID_);
    if (!items_.isEmpty() || !pendingInput_.isEmpty()) {
        QDir().mkpath(conversationsFolder(workspace_));
        try {
            // Written at once, so a crash in the next step finds it; flushed off the window's thread.
            const std::optional<QString> error = AtomicFile::write(path, encoder().encode(current), 0644,
                                                                   AtomicFile::Durability::Written);
            if (!error)
                AtomicFile::flushInBackground(path);
            if (operations_.diskFull)
                operations_.diskFull(error && AtomicFile::isDiskFull(*error));
        } catch (const JSON::Error &) {
            // A value JSON can't hold; the old file stands and the next save tries again.
        }
    } else {
        QFile::remove(path);
    }

    // Patched in place: a write never moves an entry, however recent.
    const ConversationSummary summary = current.summary(conversationID_);
    QList<ConversationSummary> list = conversations_;
    const auto entry = std::find_if(list.begin(), list.end(),
                                    [&](const ConversationSummary &listed) { return listed.id == summary.id; });
    if (entry != list.end()) {
        if (summary.isEmpty)
            list.erase(entry);
        else
            *entry = summary;
    } else if (!summary.isEmpty) {
        list.prepend(summary);
    }
    setConversations(std::move(list));
    killIfAskedAfterSave();
}

void Agent::load(const Saved &saved)
{
    setConversationID(saved.id.value_or(QUuid::createUuid()));
    createdAt_ = saved.created.value_or(QDateTime::currentDateTimeUtc());
    setItems(saved.items);
    previousResponseID_ = saved.previousResponseID;
    pendingInput_ = saved.pendingInput;
    notes_ = saved.notes;
    restartCallID_ = saved.restartCallID;
    unansweredCalls_ = saved.unansweredCalls;
    currentRequest_ = saved.currentRequest;
    history_ = saved.history;
}

void Agent::restore()
{
    if (!hasCopy(workspace_))
        return;
    const auto id = uuidFromText(Defaults::suiteValue(workspace_.defaultsSuite(), currentConversationKey).toString());
    if (id) {
        if (auto stored = Saved::read(workspace_.conversation(*id)))
            load(*stored);
    }
    refreshConversations();
}

void Agent::refreshConversations()
{
    if (!hasCopy(workspace_))
        return;
    const QFileInfoList entries =
        QDir(conversationsFolder(workspace_)).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
    QList<ConversationSummary> list;
    for (const QFileInfo &entry : entries) {
        if (entry.suffix() != u"json")
            continue;
        const auto stored = Saved::read(entry.filePath());
        if (!stored)
            continue;
        const QUuid fallback = uuidFromText(entry.completeBaseName()).value_or(QUuid::createUuid());
        ConversationSummary summary = stored->summary(fallback);
        if (!summary.isEmpty)
            list.append(std::move(summary));
    }
    std::stable_sort(list.begin(), list.end(),
                     [](const ConversationSummary &a, const ConversationSummary &b) { return a.updated > b.updated; });
    setConversations(std::move(list));
}

void Agent::openConversation(const QUuid &id)
{
    if (id == conversationID_)
        return;
    QPointer<Agent> weak(this);
    afterStopping([weak, id] {
        if (!weak || !hasCopy(weak->workspace_))
            return;
        if (auto stored = Saved::read(weak->workspace_.conversation(id))) {
            weak->load(*stored);
            weak->save();
        } else {
            weak->refreshConversations();
        }
    });
}

void Agent::newConversation()
{
    QPointer<Agent> weak(this);
    afterStopping([weak] {
        if (!weak)
            return;
        Saved blank;
        blank.id = QUuid::createUuid();
        weak->load(blank);
        weak->save();
    });
}

void Agent::resumeAfterLaunch(std::optional<int> loadedVersion)
{
    for (const QString &callID : std::as_const(unansweredCalls_)) {
        if (callID != restartCallID_)
            pendingInput_.append(output(callID, stoppedOutput()));
    }
    unansweredCalls_.clear();
    save();
    if (!restartCallID_)
        return;

    const QString callID = *restartCallID_;
    restartCallID_.reset();
    QString answer = restartAnswer(loadedVersion);
    if (!notes_.isEmpty()) {
        answer += u'\n' + notes_.join(u'\n');
        notes_.clear();
    }
    pendingInput_.append(output(callID, answer));
    appendItem(ChatItem::make(ChatItem::Kind::Event, QStringLiteral("Restarted"), QStringLiteral("arrow.clockwise")));
    save();
    start();
}

} // namespace zentoro
