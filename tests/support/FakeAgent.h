#pragma once

#include "agent/Agent.h"
#include "agent/AgentOperations.h"

#include <QNetworkReply>

namespace zentoro::test {

// Items as the model's stream would finish them.
JSON textMessage(const QString &text);
JSON functionCall(const QString &callID, const QString &name, const QString &arguments = QStringLiteral("{}"));
JSON response(std::initializer_list<JSON> output, const QString &id = QStringLiteral("resp_1"));

// Operations for an Agent with an API key whose model answers "done" and whose every other
// seam does the least it may: a test replaces only the operations its case is about.
AgentOperations fakeOperations();

// The agent's rows as "kind: text".
QStringList rowTexts(const Agent &agent);

// A model that answers nothing until the run is stopped, then fails as an aborted reply.
QCoro::Task<JSON> respondOnlyToAStop(const TaskHandle &task, const QString &bearer, const JSON &body,
                                     const std::function<void(const JSON &)> &onItemStarted);

} // namespace zentoro::test
