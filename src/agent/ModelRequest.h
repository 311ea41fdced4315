#pragma once

#include "agent/PlanAccess.h"
#include "core/JSON.h"
#include "core/MainTask.h"
#include "model_service/Provider.h"

#include <QList>
#include <QPointer>
#include <QString>
#include <QUuid>

#include <QCoroTask>

#include <optional>

namespace zentoro {

class Agent;

// The credential and the body of one request to the Responses interface, and the tools
// the model is offered.
namespace ModelRequest {

// The credential for `provider`: the plan's access token (a new one when `refresh`), or the
// saved API key, else the environment's. Raises Failure with words for the user when there is none.
QCoro::Task<QString> bearer(const TaskHandle &task, Provider provider, bool refresh,
                            QPointer<PlanAccess> plan = nullptr);

// The body of the agent's next request. Changes nothing.
JSON request(const Agent &agent, Provider provider);

// The same from the system prompt and the parts of a conversation. On the API-key path with
// a previous response only the pending input goes out, chained to it; otherwise the whole
// conversation does.
JSON body(const QString &instructions, Provider provider, const QList<JSON> &history, const QList<JSON> &pendingInput,
          const std::optional<QString> &previousResponseID, const QUuid &conversationID);

// The catalog: one namespace "zentoro" that holds `functions`. Built once.
const JSON &tools();
// The nine function tools, in the order the model is shown them. Built once.
const JSON &functions();

// One strict function tool: every property is required, in sorted order.
JSON function(const QString &name, const QString &description, const JSON::Object &properties);
// A string property with its description.
JSON string(const QString &description);

} // namespace ModelRequest

} // namespace zentoro
