#include "agent/ModelRequest.h"

#include "core/Defaults.h"
#include "model_service/AgentConfig.h"
#include "runtime/Workspace.h"
#include "support/Await.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

const QUuid conversation = QUuid::fromString(QStringLiteral("{6f1c2a9e-0b7d-4c55-9a1e-3d2f8b7c6a10}"));
const QList<JSON> history{JSON::object({{"role", "user"}, {"content", "earlier"}}),
                          JSON::object({{"type", "message"}, {"role", "assistant"}, {"content", JSON::array()}})};
const QList<JSON> pending{JSON::object({{"role", "user"}, {"content", "now"}})};

class ModelRequestTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        Defaults::remove("reasoningEffort");
        Defaults::remove("model");
    }
    void TearDown() override { SetUp(); }
};

JSON::Array arrayOf(const QList<JSON> &list)
{
    return JSON::Array(list.begin(), list.end());
}

QStringList keys(const JSON &object)
{
    QStringList names;
    for (const auto &entry : *object.objectValue())
        names.append(entry.first);
    return names;
}

const JSON *tool(const QString &name)
{
    for (const JSON &function : *ModelRequest::functions().arrayValue()) {
        if (function.stringAt("name") == name)
            return &function;
    }
    return nullptr;
}

} // namespace

TEST_F(ModelRequestTest, TheAPIKeyPathChainsToThePreviousResponseWhenThereIsOne)
{
    const JSON body = ModelRequest::body(Provider::APIKey, history, pending, QStringLiteral("resp_1"), conversation);
    EXPECT_EQ(keys(body), (QStringList{"include", "input", "instructions", "model", "previous_response_id",
                                       "prompt_cache_key", "stream", "tools", "truncation"}));
    EXPECT_EQ(*body.find("input"), JSON(arrayOf(pending)));
    EXPECT_EQ(body.stringAt("previous_response_id"), "resp_1");
    EXPECT_EQ(body.stringAt("truncation"), "auto");
    EXPECT_EQ(body.stringAt("model"), "gpt-6.1-sol");
    EXPECT_EQ(body.boolAt("stream"), true);
    EXPECT_EQ(*body.find("include"), JSON::array({"reasoning.encrypted_content"}));
    EXPECT_EQ(body.stringAt("prompt_cache_key"), "6F1C2A9E-0B7D-4C55-9A1E-3D2F8B7C6A10");
    EXPECT_EQ(*body.find("tools"), ModelRequest::tools());

    // Without a previous response, everything goes.
    const JSON whole = ModelRequest::body(Provider::APIKey, history, pending, std::nullopt, conversation);
    EXPECT_EQ(*whole.find("input"), JSON(arrayOf(history + pending)));
    EXPECT_FALSE(whole.find("previous_response_id"));
    EXPECT_FALSE(whole.find("store"));
}

TEST_F(ModelRequestTest, ThePlanPathSendsEverythingAndStoresNothing)
{
    // A response id left from the API-key path doesn't chain a plan request.
    const JSON body = ModelRequest::body(Provider::ChatGPT, history, pending, QStringLiteral("resp_1"), conversation);
    EXPECT_EQ(keys(body), (QStringList{"include", "input", "instructions", "model", "prompt_cache_key", "store",
                                       "stream", "tools"}));
    EXPECT_EQ(*body.find("input"), JSON(arrayOf(history + pending)));
    EXPECT_EQ(body.boolAt("store"), false);
}

TEST_F(ModelRequestTest, ReasoningEffortIsSentOnlyWhenSet)
{
    Defaults::setValue("reasoningEffort", "");
    EXPECT_FALSE(ModelRequest::body(Provider::APIKey, {}, pending, std::nullopt, conversation).find("reasoning"));
    Defaults::setValue("reasoningEffort", "high");
    EXPECT_EQ(*ModelRequest::body(Provider::ChatGPT, {}, pending, std::nullopt, conversation).find("reasoning"),
              JSON::object({{"effort", "high"}}));
    Defaults::setValue("model", "gpt-test");
    EXPECT_EQ(ModelRequest::body(Provider::ChatGPT, {}, pending, std::nullopt, conversation).stringAt("model"),
              "gpt-test");
}

TEST_F(ModelRequestTest, TheCatalogIsOneNamespaceOfNineStrictFunctions)
{
    const JSON::Array &catalog = *ModelRequest::tools().arrayValue();
    ASSERT_EQ(catalog.size(), 1u);
    EXPECT_EQ(catalog[0].stringAt("type"), "namespace");
    EXPECT_EQ(catalog[0].stringAt("name"), "zentoro");
    EXPECT_EQ(*catalog[0].find("tools"), ModelRequest::functions());

    QStringList names;
    for (const JSON &function : *ModelRequest::functions().arrayValue()) {
        names.append(*function.stringAt("name"));
        EXPECT_EQ(function.boolAt("strict"), true);
        EXPECT_EQ(function.stringAt("type"), "function");
        const JSON *parameters = function.find("parameters");
        ASSERT_TRUE(parameters);
        EXPECT_EQ(parameters->boolAt("additionalProperties"), false);
        EXPECT_EQ(parameters->arrayAt("required")->size(), parameters->objectAt("properties")->size());
    }
    EXPECT_EQ(names, (QStringList{"list_files", "read_file", "write_file", "edit_file", "delete_file", "build",
                                  "screenshot", "read_log", "restart_app"}));
}

TEST_F(ModelRequestTest, FunctionsRequireEveryPropertyInSortedOrder)
{
    EXPECT_EQ(*tool("edit_file")->find("parameters")->find("required"), JSON::array({"new_text", "old_text", "path"}));
    EXPECT_EQ(*tool("write_file")->find("parameters")->find("required"), JSON::array({"content", "path"}));
    // Without properties there is still an empty list.
    EXPECT_EQ(*tool("build")->find("parameters"),
              JSON::object({{"type", "object"},
                            {"properties", JSON::object()},
                            {"required", JSON::array()},
                            {"additionalProperties", false}}));
    const JSON which = *tool("read_log")->find("parameters")->find("properties")->find("which");
    EXPECT_EQ(*which.find("enum"), JSON::array({"current", "previous", "crash"}));
    EXPECT_EQ(which.stringAt("type"), "string");
}

namespace {
// The credential, or the failure's words.
QCoro::Task<QString> credential(Provider provider)
{
    const TaskHandle task;
    try {
        co_return co_await ModelRequest::bearer(task, provider, false);
    } catch (const Workspace::Failure &failure) {
        co_return QString::fromUtf8("failure: ") + failure.message;
    }
}
} // namespace

TEST_F(ModelRequestTest, TheBearerIsTheEffectiveKeyOrAFailureForTheUser)
{
    QFile::remove(AgentConfig::keyPath());
    qunsetenv("OPENAI_API_KEY");
    const QString none = test::await(credential(Provider::APIKey));
    EXPECT_TRUE(none.startsWith("failure: Add your OpenAI API key first (")) << none.toStdString();
    EXPECT_TRUE(none.endsWith(" → Settings…)."));

    // Which key is the effective one is AgentConfig's to say.
    qputenv("OPENAI_API_KEY", "sk-env");
    EXPECT_EQ(test::await(credential(Provider::APIKey)), "sk-env");
    qunsetenv("OPENAI_API_KEY");
}
