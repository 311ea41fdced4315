#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace zentoro {

// One model a ChatGPT plan offers.
struct PlanModel {
    QString slug;
    QString name;

    bool operator==(const PlanModel &) const = default;
};

// The plan's model list: read from the model service, kept in the shared settings under
// "chatgptModels" across launches.
namespace PlanModels {

// The listed models of a `/v1/models` answer, in the service's order; absent when the body
// isn't JSON.
std::optional<QList<PlanModel>> parse(const QByteArray &body);

// The list of the last successful fetch; empty when there is none or it doesn't decode.
QList<PlanModel> cached();
void store(const QList<PlanModel> &models);

} // namespace PlanModels

} // namespace zentoro
