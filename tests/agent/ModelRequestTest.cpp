#include "agent/ModelRequest.h"

#include "core/AtomicFile.h"
#include "core/Defaults.h"
#include "model_service/AgentConfig.h"
#include "runtime/Workspace.h"
#include "support/Await.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

const QUuid conversation = QUuid::fromString(QStringLiteral("{6f1c2a9e-0b7d-4c55-9a1e-3d2f8b7c6a10}"));
const QList<JSON> history{JSON::object({{"role", "user"}, {"content", "earlier"}}),
                          JSON::object({{"type", "message"}, {"role", "assistant"}, {"content", JSON::array()}})};
const QList<JSON> pending{JSON::object({{"role", "user"}, {"content", "now"}})};
const QString prompt = QStringLiteral("You work on Tally.");

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

// What every request carries, with `input` and the path's own keys.
JSON expected(const QList<JSON> &input, std::initializer_list<std::pair<QString, JSON>> own)
{
    JSON whole = JSON::object({{"include", JSON::array({"reasoning.encrypted_content"})},
                               {"input", JSON(arrayOf(input))},
                               {"instructions", prompt},
                               {"model", "gpt-6.1-sol"},
                               {"prompt_cache_key", "6F1C2A9E-0B7D-4C55-9A1E-3D2F8B7C6A10"},
                               {"stream", true},
                               {"tools", ModelRequest::tools()}});
    for (const auto &[key, value] : own)
        whole.set(key, value);
    return whole;
}

const JSON &parameters(const QString &name)
{
    for (const JSON &function : *ModelRequest::functions().arrayValue()) {
        if (function.stringAt("name") == name)
            return *function.find("parameters");
    }
    throw std::runtime_error("no such function");
}

} // namespace

TEST_F(ModelRequestTest, TheAPIKeyPathChainsToThePreviousResponseAndThePlanPathSendsEverythingUnstored)
{
    // No reasoning key while the effort is unset.
    Defaults::setValue("reasoningEffort", "");
    const JSON chained = ModelRequest::body(prompt, Provider::APIKey, history, pending, QStringLiteral("resp_1"),
                                            conversation);
    EXPECT_EQ(chained, expected(pending, {{"previous_response_id", "resp_1"}, {"truncation", "auto"}}));
    const JSON whole = ModelRequest::body(prompt, Provider::APIKey, history, pending, std::nullopt, conversation);
    EXPECT_EQ(whole, expected(history + pending, {{"truncation", "auto"}}));
    // A response id left from the API-key path doesn't chain a plan request.
    const JSON plan = ModelRequest::body(prompt, Provider::ChatGPT, history, pending, QStringLiteral("resp_1"),
                                         conversation);
    EXPECT_EQ(plan, expected(history + pending, {{"store", false}}));

    Defaults::setValue("reasoningEffort", "high");
    Defaults::setValue("model", "gpt-test");
    const JSON tuned = ModelRequest::body(prompt, Provider::ChatGPT, {}, pending, std::nullopt, conversation);
    EXPECT_EQ(tuned,
              expected(pending,
                       {{"store", false}, {"model", "gpt-test"}, {"reasoning", JSON::object({{"effort", "high"}})}}));
}

TEST_F(ModelRequestTest, TheCatalogIsOneNamespaceOfNineStrictFunctionsRequiringEveryProperty)
{
    const JSON::Array &catalog = *ModelRequest::tools().arrayValue();
    ASSERT_EQ(catalog.size(), 1u);
    EXPECT_EQ(catalog[0].stringAt("type"), "namespace");
    EXPECT_EQ(catalog[0].stringAt("name"), "zentoro");
    EXPECT_EQ(*catalog[0].find("tools"), ModelRequest::functions());
    QStringList names;
    for (const JSON &function : *ModelRequest::functions().arrayValue()) {
        names.append(function.stringAt("name").value_or(""));
        EXPECT_EQ(function.boolAt("strict"), true);
        EXPECT_EQ(function.stringAt("type"), "function");
        const JSON &parameters = *function.find("parameters");
        EXPECT_EQ(parameters.boolAt("additionalProperties"), false);
        EXPECT_EQ(parameters.arrayAt("required")->size(), parameters.objectAt("properties")->size());
    }
    EXPECT_EQ(names, (QStringList{"list_files", "read_file", "write_file", "edit_file", "delete_file", "build",
                                  "screenshot", "read_log", "restart_app"}));
    // Sorted, and an empty list when there are no properties.
    EXPECT_EQ(*parameters("edit_file").find("required"), JSON::array({"new_text", "old_text", "path"}));
    EXPECT_EQ(parameters("build"), JSON::object({{"type", "object"},
                                                 {"properties", JSON::object()},
                                                 {"required", JSON::array()},
                                                 {"additionalProperties", false}}));
    const JSON which = *parameters("read_log").find("properties")->find("which");
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
    EXPECT_EQ(none, "failure: Add your OpenAI API key first in Settings (Ctrl+,).");

    // Which key is the effective one is AgentConfig's to say.
    qputenv("OPENAI_API_KEY", "sk-env");
    EXPECT_EQ(test::await(credential(Provider::APIKey)), "sk-env");
    qunsetenv("OPENAI_API_KEY");
}

TEST_F(ModelRequestTest, AWholeRequestSendsWholePairsAndTheNewestThreePicturesExactly)
{
    QTemporaryDir folder;
    const auto shot = [&](const QString &name, const QByteArray &bytes) {
        const QString path = folder.filePath(name + ".png");
        EXPECT_FALSE(AtomicFile::write(path, bytes).has_value());
        return path;
    };
    const QStringList paths{shot("a", "one"), shot("c", "two"), shot("d", "three"), shot("e", "four")};
    const auto call = [](const char *id) {
        return JSON::object({{"type", "function_call"}, {"call_id", id}, {"name", "screenshot"}, {"arguments", "{}"}});
    };
    const auto output = [](const char *id, const QString &path) {
        return JSON::object({{"type", "function_call_output"},
                             {"call_id", id},
                             {"output", JSON::array({JSON::object({{"type", "input_text"}, {"text", "The app:"}}),
                                                     JSON::object({{"type", "input_image"},
                                                                   {"image_url", QUrl::fromLocalFile(path).toString()},
                                                                   {"detail", "auto"}})})}});
    };
    const QList<JSON> conversationHistory{JSON::object({{"role", "user"}, {"content", "fix it"}}),
                                          call("a"),
                                          output("a", paths[0]),
                                          call("b"),
                                          JSON::object({{"type", "reasoning"}, {"encrypted_content", "opaque"}}),
                                          call("c"),
                                          output("c", paths[1]),
                                          call("d"),
                                          output("d", paths[2]),
                                          call("e")};
    const QList<JSON> queued{output("e", paths[3]), output("z", paths[0])};

    const auto sent = [&] {
        return ModelRequest::body(prompt, Provider::ChatGPT, conversationHistory, queued, std::nullopt, conversation)
            .find("input")
            ->encode();
    };
    const QString notice =
        R"j({"text":"(This screenshot is no longer attached. Take a new one to see the app.)","type":"input_text"})j";
    const auto picture = [](const QByteArray &bytes) {
        return QStringLiteral(R"j({"detail":"auto","image_url":"data:image/png;base64,%1","type":"input_image"})j")
            .arg(QString::fromLatin1(bytes.toBase64()));
    };
    const auto expected = [&](const QString &a, const QString &c, const QString &d, const QString &e) {
        const auto pair = [](const char *id, const QString &part) {
            return QStringLiteral(R"j({"arguments":"{}","call_id":"%1","name":"screenshot","type":"function_call"},)j"
                                  R"j({"call_id":"%1","output":[{"text":"The app:","type":"input_text"},%2],)j"
                                  R"j("type":"function_call_output"})j")
                .arg(QLatin1StringView(id), part);
        };
        // The call to b never got its output and z's output has no call: both stay out.
        return (R"j([{"content":"fix it","role":"user"},)j" + pair("a", a) +
                R"j(,{"encrypted_content":"opaque","type":"reasoning"},)j" + pair("c", c) + "," + pair("d", d) + "," +
                pair("e", e) + "]")
            .toUtf8();
    };
    EXPECT_EQ(sent(), expected(notice, picture("two"), picture("three"), picture("four")));
    EXPECT_EQ(sent(), expected(notice, picture("two"), picture("three"), picture("four")));

    // A newer screenshot under the same name is sent as it is now; a picture whose file is
    // gone says so and lets the one before it move up.
    ASSERT_FALSE(AtomicFile::write(paths[3], "FOUR").has_value());
    ASSERT_TRUE(QFile::remove(paths[2]));
    EXPECT_EQ(sent(), expected(picture("one"), picture("two"), notice, picture("FOUR")));
}
