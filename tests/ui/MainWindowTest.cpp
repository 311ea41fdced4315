#include "CopyOnDisk.h"
#include "PanelHarness.h"

#include "model_service/AgentConfig.h"
#include "runtime/PluginContainerView.h"
#include "ui/AgentPanel.h"
#include "ui/BannerView.h"
#include "ui/Commands.h"
#include "ui/MainWindow.h"
#include "ui/SetupRows.h"
#include "ui/SetupView.h"
#include "ui/WorkingRow.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>

using namespace zentoro;

namespace {

class Window : public test::CopyOnDisk {
protected:
    void TearDown() override
    {
        window.reset();
        qunsetenv("OPENAI_API_KEY");
        AgentConfig::saveAPIKey(std::nullopt);
    }

    MainWindow &open()
    {
        window = std::make_unique<MainWindow>(*runtime, harness.agent);
        window->show();
        return *window;
    }

    test::PanelHarness harness;
    std::unique_ptr<MainWindow> window;
};

TEST_F(Window, ShowsTheLoadedVersionAndItsCommands)
{
    makeVersion(1);
    makeVersion(2);
    state.current = 2;
    launch();
    MainWindow &main = open();
    EXPECT_EQ(main.windowTitle(), workspace.name);
    EXPECT_EQ(main.size(), MainWindow::defaultSize);
    EXPECT_EQ(main.QWidget::minimumSize(), MainWindow::minimumSize);
    EXPECT_EQ(main.versionButton()->text(), "Version 2");
    EXPECT_FALSE(main.showsSetup());
    EXPECT_TRUE(main.bannerView()->isHidden());
    EXPECT_TRUE(main.buildingIndicator()->isHidden());
    EXPECT_EQ(main.restartButton()->toolTip(), QStringLiteral("Restart %1 (Alt+Ctrl+R)").arg(workspace.name));
    EXPECT_TRUE(main.restartButton()->isEnabled());

    // The compiler is missing: nothing can be built from the menu.
    EXPECT_FALSE(main.commands()->buildAndRun()->isEnabled());
    EXPECT_TRUE(main.commands()->goBackMenu()->menuAction()->isEnabled());
    emit main.commands()->goBackMenu()->aboutToShow();
    EXPECT_EQ(main.commands()->goBackMenu()->actions().size(), 2);
    main.commands()->goBackMenu()->actions().first()->trigger();
    EXPECT_EQ(main.versionButton()->text(), "Version 2");
    main.commands()->goBackMenu()->actions().last()->trigger();
    EXPECT_EQ(main.versionButton()->text(), "Version 1");
}

TEST_F(Window, WithNothingLoadedTheSetupScreenShowsWhatIsMissing)
{
    launch();
    MainWindow &main = open();
    EXPECT_EQ(main.versionButton()->text(), QStringLiteral("No Version"));
    EXPECT_TRUE(main.showsSetup());
    EXPECT_FALSE(main.commands()->goBackMenu()->menuAction()->isEnabled());
    SetupView *setup = main.setupView();
    EXPECT_EQ(setup->toolchainRow()->title(), QStringLiteral("Install the Swift toolchain"));
    EXPECT_TRUE(setup->toolchainRow()->detail().contains(workspace.name));
    EXPECT_EQ(setup->toolchainRow()->actionButton()->text(), QStringLiteral("Install…"));
    // No build is offered without a working compiler.
    EXPECT_TRUE(setup->statusButton()->isHidden());
    EXPECT_EQ(setup->statusText(), QString());
}

TEST_F(Window, SafeModeOffersTheNewestVersionToRunAndLeavesWhenItLoads)
{
    Defaults::setValue("ZentoroSafeMode", true);
    launch();
    EXPECT_EQ(open().setupView()->statusText(), "Safe mode: the app's code isn't loaded.");
    EXPECT_TRUE(window->setupView()->statusButton()->isHidden()) << "no version to offer";

    window.reset();
    makeVersion(1);
    makeVersion(2);
    launch();
    Defaults::remove("ZentoroSafeMode");
    MainWindow &main = open();
    EXPECT_EQ(main.versionButton()->text(), "Safe Mode");
    ASSERT_TRUE(main.showsSetup());
    SetupView *setup = main.setupView();
    EXPECT_EQ(setup->statusText(), "Safe mode: the app's code isn't loaded.");
    ASSERT_FALSE(setup->statusButton()->isHidden());
    EXPECT_EQ(setup->statusButton()->text(), "Run Version 2");
    setup->statusButton()->click();
    EXPECT_EQ(runtime->loadedVersion(), 2);
    EXPECT_FALSE(main.showsSetup());
    EXPECT_EQ(main.versionButton()->text(), "Version 2");
}

TEST_F(Window, TheAgentToggleIsRememberedForTheNextWindow)
{
    launch();
    MainWindow &main = open();
    ASSERT_TRUE(main.showsAgent());
    EXPECT_EQ(main.commands()->toggleAgent()->text(), QStringLiteral("Hide Agent"));
    EXPECT_EQ(main.commands()->toggleAgent()->shortcut(),
              QKeySequence(Qt::AltModifier | Qt::ControlModifier | Qt::Key_I));
    EXPECT_EQ(main.agentButton()->toolTip(), QStringLiteral("Hide the agent (Alt+Ctrl+I)"));

    main.agentButton()->click();
    EXPECT_FALSE(main.agentPanel()->isVisible());
    EXPECT_EQ(main.commands()->toggleAgent()->text(), QStringLiteral("Show Agent"));
    EXPECT_EQ(main.agentButton()->toolTip(), QStringLiteral("Show the agent (Alt+Ctrl+I)"));
    EXPECT_FALSE(MainWindow::agentShownSetting());

    window.reset();
    MainWindow &next = open();
    EXPECT_FALSE(next.showsAgent());
    next.commands()->toggleAgent()->trigger();
    EXPECT_TRUE(next.agentPanel()->isVisible());
    EXPECT_TRUE(MainWindow::agentShownSetting());
}

TEST_F(Window, TheBannerHandsTheTroubleToTheAgent)
{
    launch();
    MainWindow &main = open();
    BannerView *banner = main.bannerView();
    runtime->setBanner(Banner{QStringLiteral("Build failed"), QStringLiteral("App.swift:3: error"), true});
    ASSERT_FALSE(banner->isHidden());
    EXPECT_EQ(banner->titleLabel()->text(), QStringLiteral("Build failed"));
    ASSERT_FALSE(banner->fixButton()->isHidden());
    ASSERT_TRUE(banner->fixButton()->isEnabled());

    banner->fixButton()->click();
    EXPECT_EQ(runtime->banner(), std::nullopt);
    EXPECT_TRUE(banner->isHidden());
    ASSERT_TRUE(harness.agent.isRunning());
    ASSERT_FALSE(harness.agent.items().isEmpty());
    EXPECT_EQ(harness.agent.items().first().text,
              QStringLiteral("Something went wrong: Build failed (App.swift:3: error). Please find out why and fix it."));

    // While the agent works, the fix waits; dismissing still works.
    runtime->setBanner(Banner{QStringLiteral("Crashed"), std::nullopt, true});
    EXPECT_FALSE(banner->fixButton()->isEnabled());
    EXPECT_TRUE(banner->detailLabel()->isHidden());
    banner->dismissButton()->click();
    EXPECT_EQ(runtime->banner(), std::nullopt);
    EXPECT_TRUE(harness.finish());
}

TEST_F(Window, TheFixIsOnlyOfferedWhenTheAgentCanWork)
{
    harness.available.reset();
    harness.agent.setHasAPIKey(false);
    launch();
    MainWindow &main = open();
    runtime->setBanner(Banner{QStringLiteral("Build failed"), std::nullopt, true});
    EXPECT_TRUE(main.bannerView()->fixButton()->isHidden());
    runtime->setBanner(Banner{QStringLiteral("Couldn't load version 1"), std::nullopt, false});
    harness.agent.setHasAPIKey(true);
    EXPECT_TRUE(main.bannerView()->fixButton()->isHidden());
    EXPECT_EQ(BannerView::fixRequest(Banner{QStringLiteral("Crashed"), std::nullopt, true}),
              QStringLiteral("Something went wrong: Crashed. Please find out why and fix it."));
}

TEST_F(Window, AKeyPastedOnTheSetupScreenReachesTheAgent)
{
    harness.agent.setHasAPIKey(false);
    launch();
    MainWindow &main = open();
    AgentAccessRow *access = main.setupView()->accessRow();
    EXPECT_EQ(access->title(), QStringLiteral("Connect the agent"));
    ASSERT_TRUE(access->keyField()->isVisible());

    access->keyField()->setText(QStringLiteral(" \t "));
    EXPECT_FALSE(access->saveButton()->isEnabled());
    access->save();
    EXPECT_FALSE(AgentConfig::savedKey());

    access->keyField()->setText(QStringLiteral("  sk-pasted\t"));
    ASSERT_TRUE(access->saveButton()->isEnabled());
    emit access->keyField()->returnPressed();
    EXPECT_EQ(AgentConfig::savedKey(), QStringLiteral("sk-pasted"));
    EXPECT_TRUE(harness.agent.hasAPIKey());
    EXPECT_EQ(access->title(), QStringLiteral("OpenAI API key added"));
    EXPECT_TRUE(access->keyField()->text().isEmpty());
    EXPECT_FALSE(access->keyField()->isVisible());
    EXPECT_NE(access->detail(), QStringLiteral("From the OPENAI_API_KEY environment variable."));

    // A key from the environment is named as such.
    AgentConfig::saveAPIKey(std::nullopt);
    qputenv("OPENAI_API_KEY", "sk-env");
    window.reset();
    EXPECT_EQ(open().setupView()->accessRow()->title(), "OpenAI API key added");
    EXPECT_EQ(window->setupView()->accessRow()->detail(), "From the OPENAI_API_KEY environment variable.");
}

TEST_F(Window, AKeyThatCantBeSavedIsToldBesideTheField)
{
    harness.agent.setHasAPIKey(false);
    launch();
    MainWindow &main = open();
    // A folder where the key file goes makes the write fail.
    QDir().mkpath(AgentConfig::keyPath());
    AgentAccessRow *access = main.setupView()->accessRow();
    access->keyField()->setText(QStringLiteral("sk-pasted"));
    access->save();
    QDir(AgentConfig::keyPath()).removeRecursively();
    EXPECT_FALSE(access->error().isEmpty());
    EXPECT_EQ(access->keyField()->text(), QStringLiteral("sk-pasted"));
    EXPECT_EQ(access->title(), QStringLiteral("Connect the agent"));
}

} // namespace
