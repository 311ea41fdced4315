#include "chatgpt/PlanModels.h"

#include "core/Defaults.h"
#include "core/JSON.h"

namespace zentoro::PlanModels {

namespace {

const QString modelsKey = QStringLiteral("chatgptModels");

} // namespace

std::optional<QList<PlanModel>> parse(const QByteArray &body)
{
    JSON document;
    try {
        document = JSON::decode(body);
    } catch (const JSON::Error &) {
        return std::nullopt;
    }
    QList<PlanModel> models;
    const JSON::Array *entries = document.arrayAt(QStringLiteral("models"));
    if (!entries)
        return models;
    for (const JSON &entry : *entries) {
        const JSON *visibility = entry.find(QStringLiteral("visibility"));
        if (visibility && visibility->stringRef() && *visibility->stringRef() != u"list")
            continue;
        const std::optional<QString> slug = entry.stringAt(QStringLiteral("slug"));
        if (!entry.objectValue() || !slug)
            continue;
        models.append(PlanModel{*slug, entry.stringAt(QStringLiteral("display_name")).value_or(*slug)});
    }
    return models;
}

QList<PlanModel> cached()
{
    const QVariant stored = Defaults::value(modelsKey);
    if (!stored.isValid())
        return {};
    QList<PlanModel> models;
    try {
        const JSON list = JSON::decode(stored.toByteArray());
        const JSON::Array *entries = list.arrayValue();
        if (!entries)
            return {};
        for (const JSON &entry : *entries) {
            const std::optional<QString> slug = entry.stringAt(QStringLiteral("slug"));
            const std::optional<QString> name = entry.stringAt(QStringLiteral("name"));
            if (!slug || !name)
                return {};
            models.append(PlanModel{*slug, *name});
        }
    } catch (const JSON::Error &) {
        return {};
    }
    return models;
}

void store(const QList<PlanModel> &models)
{
    JSON list = JSON::array();
    for (const PlanModel &model : models)
        list.append(JSON::object({{QStringLiteral("slug"), model.slug}, {QStringLiteral("name"), model.name}}));
    Defaults::setValue(modelsKey, list.encode());
}

} // namespace zentoro::PlanModels
