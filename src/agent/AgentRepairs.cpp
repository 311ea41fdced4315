#include "agent/Agent.h"

#include "agent/HistoryUpkeep.h"

namespace zentoro {

namespace {

bool isType(const JSON &item, QStringView type)
{
    return item.stringAt(QStringLiteral("type")) == type;
}

QString chainLostNotice()
{
    return QStringLiteral("Earlier parts of this conversation were lost; look at the files again before relying on "
                          "them.");
}

} // namespace

void Agent::dropResponseChain()
{
    previousResponseID_.reset();
    if (!history_.isEmpty())
        return;
    // The chain was all there was: the calls of these outputs are gone with it.
    pendingInput_.removeIf([](const JSON &item) { return isType(item, u"function_call_output"); });
    pendingInput_.prepend(message(QStringLiteral("developer"), chainLostNotice()));
}

bool Agent::trimHistory()
{
    return HistoryUpkeep::trimHistory(history_, pendingInput_);
}

bool Agent::dropReasoning()
{
    return history_.removeIf([](const JSON &item) { return isType(item, u"reasoning"); }) > 0;
}

} // namespace zentoro
