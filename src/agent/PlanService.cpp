#include "agent/PlanService.h"

namespace zentoro {

PlanService PlanService::standard()
{
    QString origin = qEnvironmentVariable("ZENTORO_CHATGPT_BASE", QStringLiteral("https://chatgpt.com"));
    while (origin.endsWith(u'/'))
        origin.chop(1);
    return PlanService{QUrl(origin + QStringLiteral("/settings/usage")), std::chrono::seconds(5)};
}

} // namespace zentoro
