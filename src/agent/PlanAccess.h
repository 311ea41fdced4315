#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

#include <QCoroTask>

#include <functional>

namespace zentoro {

// What the agent needs of a ChatGPT plan: a token for each request, whether the plan can be
// used now, and where its usage is managed. The signed-in accounts provide it; tests put a
// fake in their place.
class PlanAccess : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // A token good for the next request. `force` asks for a new one, because the service
    // refused the last. Raises with words for the user when there is none to be had.
    virtual QCoro::Task<QString> accessToken(bool force) = 0;
    // An account is signed in, can still act, and allowed Zentoro to use its plan.
    virtual bool canUsePlan() const = 0;
    // The plan's usage page.
    virtual QUrl usageURL() const = 0;

    // Called after a sign-in that got plan access; the agent makes the plan its choice.
    std::function<void()> onPlanReady;

signals:
    // `canUsePlan` may have changed.
    void changed();
};

} // namespace zentoro
