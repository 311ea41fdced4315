#pragma once

#include "agent/PlanAccess.h"

#include <functional>

namespace zentoro::test {

// A plan that is usable while `usable` says so and hands out "plan-token-<n>", a new n for each
// forced request.
class FakePlan : public PlanAccess {
public:
    std::function<bool()> usable = [] { return true; };
    int requests = 0;
    int forced = 0;

    QCoro::Task<QString> accessToken(bool force) override
    {
        ++requests;
        if (force)
            ++forced;
        co_return QStringLiteral("plan-token-%1").arg(forced);
    }
    bool canUsePlan() const override { return usable(); }
    QUrl usageURL() const override { return QUrl(QStringLiteral("https://chatgpt.example/settings/usage")); }
};

} // namespace zentoro::test
