#include "model_service/AgentConfig.h"

#include "core/Defaults.h"
#include "runtime/Workspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace zentoro;

namespace {

class AgentConfigTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        QFile::remove(AgentConfig::keyPath());
        qunsetenv("OPENAI_API_KEY");
        Defaults::remove("model");
    }
    void TearDown() override { SetUp(); }

    static void writeKeyFile(const QByteArray &contents)
    {
        QDir().mkpath(Workspace::support());
        QFile file(AgentConfig::keyPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(contents);
    }
};

} // namespace

TEST_F(AgentConfigTest, TheSavedKeyWinsOverTheEnvironmentAndBlankOrNonTextKeysCountAsNone)
{
    qputenv("OPENAI_API_KEY", " \t\n");
    EXPECT_FALSE(AgentConfig::environmentKey());
    qputenv("OPENAI_API_KEY", "  sk-env\n");
    EXPECT_EQ(AgentConfig::effectiveKey(), "sk-env");

    AgentConfig::saveAPIKey(QStringLiteral(" sk-saved \n"));
    EXPECT_EQ(AgentConfig::savedKey(), "sk-saved");
    EXPECT_EQ(AgentConfig::effectiveKey(), "sk-saved");
    AgentConfig::saveAPIKey(std::nullopt);
    EXPECT_EQ(AgentConfig::effectiveKey(), "sk-env");

    for (const QByteArray &none : {QByteArray(" \n\n"), QByteArray("sk-\xff\xfe")}) {
        writeKeyFile(none);
        EXPECT_FALSE(AgentConfig::savedKey()) << none.toStdString();
        EXPECT_EQ(AgentConfig::effectiveKey(), "sk-env");
    }
    writeKeyFile("sk-file\n");
    EXPECT_EQ(AgentConfig::savedKey(), "sk-file");
    // Blank text removes the saved key.
    AgentConfig::saveAPIKey(QStringLiteral("   "));
    EXPECT_FALSE(QFile::exists(AgentConfig::keyPath()));
}

TEST_F(AgentConfigTest, TheKeyFileIsTheOwnersAloneWhateverTheUmask)
{
    const mode_t previous = ::umask(0);
    AgentConfig::saveAPIKey(QStringLiteral("sk-secret"));
    ::umask(previous);

    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(AgentConfig::keyPath()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    // Nothing is left beside it.
    EXPECT_EQ(QDir(Workspace::support()).entryList({"openai-key*"}, QDir::Files | QDir::Hidden),
              QStringList{"openai-key"});
}

TEST_F(AgentConfigTest, AKeyThatCannotBeSavedIsReported)
{
    const QString support = Workspace::support();
    // A file where the folder should be: nothing can be created inside it.
    const QString moved = support + ".moved";
    QDir().mkpath(support);
    ASSERT_TRUE(QDir().rename(support, moved));
    QFile blocker(support);
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();

    EXPECT_THROW(AgentConfig::saveAPIKey(QStringLiteral("sk-new")), Workspace::Failure);

    QFile::remove(support);
    QDir().rename(moved, support);
}

TEST_F(AgentConfigTest, TheModelSettingIsTrimmedAndFallsBackToTheDefault)
{
    EXPECT_EQ(AgentConfig::model(), "gpt-6.1-sol");
    Defaults::setValue("model", " \t ");
    EXPECT_EQ(AgentConfig::model(), "gpt-6.1-sol");
    Defaults::setValue("model", "\tgpt-test ");
    EXPECT_EQ(AgentConfig::model(), "gpt-test");
}
