#include "ui/HandOver.h"
#include "support/Alert.h"
#include "support/Await.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

// The second process of a copy: this program started again with only this case to run. It
// exists to be run by the case below; run alone it has nothing to do.
TEST(HandOverSecondProcess, AsksTheRunningCopy)
{
    // Each test program has data folders of its own, so the copy's folder comes along.
    const QString root = qEnvironmentVariable("ZENTORO_TEST_SECOND_COPY");
    if (root.isEmpty())
        GTEST_SKIP() << "Run by HandOver.ASecondProcessBringsTheRunningCopyForward.";
    const Workspace workspace{QFileInfo(root).fileName(), root};
    EXPECT_FALSE(workspace.lock());
    EXPECT_TRUE(HandOver::askRunningCopy(workspace));
}

TEST(HandOver, ASecondProcessBringsTheRunningCopyForward)
{
    const Workspace workspace = Workspace::forName(QStringLiteral("Hand Over"));
    ASSERT_TRUE(workspace.lock());
    HandOver::Listener listener(workspace);
    ASSERT_TRUE(listener.isListening());
    int raised = 0;
    QObject::connect(&listener, &HandOver::Listener::raiseRequested, [&] { ++raised; });

    qputenv("ZENTORO_TEST_SECOND_COPY", workspace.root.toUtf8());
    QProcess second;
    second.setProcessChannelMode(QProcess::MergedChannels);
    second.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--gtest_filter=HandOverSecondProcess.*")});
    qunsetenv("ZENTORO_TEST_SECOND_COPY");
    ASSERT_TRUE(second.waitForStarted());
    ASSERT_TRUE(test::spinUntil([&] { return second.state() == QProcess::NotRunning; }, std::chrono::seconds(20)));
    EXPECT_EQ(second.exitCode(), 0) << second.readAll().toStdString();
    EXPECT_EQ(raised, 1);
}

TEST(HandOver, CopiesOfOtherNamesOrFoldersDontMeet)
{
    const Workspace timer = Workspace::forName(QStringLiteral("Timer"));
    Workspace elsewhere = timer;
    elsewhere.root = QStringLiteral("/elsewhere/Apps/Timer");
    EXPECT_NE(HandOver::serverName(timer), HandOver::serverName(Workspace::forName(QStringLiteral("Timer 2"))));
    EXPECT_NE(HandOver::serverName(timer), HandOver::serverName(elsewhere));
    EXPECT_LT(HandOver::serverName(Workspace::forName(QString(200, u'x'))).toUtf8().size(), 108);
}

TEST(HandOver, WithNoAnswerTheUserIsToldWhyNothingOpens)
{
    const Workspace workspace = Workspace::forName(QStringLiteral("Nobody Listens"));
    test::AlertSeen alert;
    test::answerNextAlert(alert);
    HandOver::deferToRunningCopy(workspace);
    EXPECT_EQ(alert.text, QStringLiteral("“Nobody Listens” is already open"));
    EXPECT_EQ(alert.informative,
              QStringLiteral("Another copy of Zentoro named “Nobody Listens” is using its files. Quit it "
                             "first, or rename this copy to make a separate app."));
}

} // namespace
