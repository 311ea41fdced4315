#include "CopyOnDisk.h"
#include "PanelHarness.h"

#include "model_service/AgentConfig.h"
#include "ui/BannerView.h"
#include "ui/Brand.h"
#include "ui/MainWindow.h"
#include "ui/SetupRows.h"
#include "ui/SetupView.h"
#include "ui/Spinner.h"
#include "ui/ZentoroCommands.h"

#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
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

// The version on screen and the menus that change it are the first session's to show.
TEST_F(Window, WithoutACompilerNothingIsBuiltAndTheSetupScreenSaysWhatIsMissing)
{
    makeVersion(1);
    launch();
    EXPECT_FALSE(open().commands()->buildAndRun()->isEnabled());
    EXPECT_TRUE(window->buildingIndicator()->isHidden());
    EXPECT_EQ(window->restartButton()->toolTip(), QStringLiteral("Restart %1 (Ctrl+Alt+R)").arg(workspace.name));

    window.reset();
    state = RuntimeState{};
    launch();
    MainWindow &main = open();
    EXPECT_EQ(main.versionButton()->text(), QStringLiteral("No Version"));
    EXPECT_TRUE(main.showsSetup());
    EXPECT_FALSE(main.commands()->goBackMenu()->menuAction()->isEnabled());
    SetupView *setup = main.setupView();
    EXPECT_EQ(setup->toolchainRow()->title(), QStringLiteral("Install the Swift toolchain"));
    EXPECT_TRUE(setup->toolchainRow()->detail().contains(workspace.name));
    EXPECT_TRUE(setup->statusButton()->isHidden());
}

TEST_F(Window, SetupFitsEveryWidth)
{
    // At every width the rows get the height their text needs there, and nothing is cut,
    // also with a banner taking height and the toolchain's longest text.
    harness.available = std::nullopt;
    harness.agent.setHasAPIKey(false);
    launch();
    MainWindow &main = open();
    SetupView *setup = main.setupView();
    runtime->setBanner(Banner{QStringLiteral("Couldn't load version 1"), QStringLiteral("dlopen failed"), false});
    QLineEdit *key = setup->accessRow()->keyField();
    QPushButton *install = setup->toolchainRow()->actionButton();
    QLabel *detail = nullptr;
    for (QLabel *label : setup->toolchainRow()->findChildren<QLabel *>())
        if (label->text() == setup->toolchainRow()->detail())
            detail = label;
    ASSERT_TRUE(detail);
    auto *wordmark = setup->findChild<Brand::StretchWordmark *>();
    ASSERT_TRUE(wordmark);
    ASSERT_TRUE(key->isVisibleTo(setup));
    for (const int width : {760, 1200, 1600}) {
        SCOPED_TRACE(width);
        main.resize(width, 760);
        QTest::qWait(50);
        EXPECT_GE(key->height(), key->minimumSizeHint().height());
        EXPECT_GE(install->mapTo(setup, QPoint(0, 0)).y(), detail->mapTo(setup, QPoint(0, detail->height())).y());
        EXPECT_GE(detail->height(), detail->heightForWidth(detail->width()));
        EXPECT_LE(key->mapTo(setup, QPoint(key->width(), 0)).x(), setup->viewport()->width());
        EXPECT_NEAR(wordmark->mapTo(setup, wordmark->rect().center()).x(), setup->viewport()->width() / 2, 2);
        EXPECT_GE(wordmark->drawnScale(), std::min(1.0, double(wordmark->width()) / wordmark->sizeHint().width()));
    }
}

TEST_F(Window, SafeModeOffersTheNewestVersionToRunAndLeavesWhenItLoads)
{
    Defaults::setValue("ZentoroSafeMode", true);
    launch();
    EXPECT_TRUE(open().setupView()->statusButton()->isHidden()) << "no version to offer";

    window.reset();
    makeVersion(1);
    makeVersion(2);
    launch();
    Defaults::remove("ZentoroSafeMode");
    MainWindow &main = open();
    EXPECT_EQ(main.versionButton()->text(), "Safe Mode");
    SetupView *setup = main.setupView();
    EXPECT_EQ(setup->statusText(), "Safe mode: the app's code isn't loaded.");
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
    main.agentButton()->click();
    EXPECT_FALSE(main.agentPanel()->isVisible());
    EXPECT_EQ(main.agentButton()->toolTip(), QStringLiteral("Show the agent (Ctrl+Alt+I)"));

    window.reset();
    MainWindow &next = open();
    EXPECT_FALSE(next.showsAgent());
    next.commands()->toggleAgent()->trigger();
    EXPECT_TRUE(next.agentPanel()->isVisible());
    EXPECT_TRUE(MainWindow::agentShownSetting());
}

TEST_F(Window, TheBannerHandsTheTroubleToTheAgentWhenItCanWork)
{
    launch();
    MainWindow &main = open();
    BannerView *banner = main.bannerView();
    runtime->setBanner(Banner{QStringLiteral("Build failed"), QStringLiteral("App.swift:3: error"), true});
    ASSERT_FALSE(banner->isHidden());
    banner->fixButton()->click();
    EXPECT_TRUE(banner->isHidden());
    ASSERT_TRUE(harness.agent.isRunning());
    EXPECT_EQ(harness.agent.items().first().text,
              QStringLiteral(
                  "Something went wrong: Build failed (App.swift:3: error). Please find out why and fix it."));

    // While the agent works, the fix waits; dismissing still works.
    runtime->setBanner(Banner{QStringLiteral("Crashed"), std::nullopt, true});
    EXPECT_FALSE(banner->fixButton()->isEnabled());
    banner->dismissButton()->click();
    EXPECT_EQ(runtime->banner(), std::nullopt);
    EXPECT_TRUE(harness.finish());

    // No fix without a way to reach the model, nor for trouble the agent can't fix.
    harness.available.reset();
    harness.agent.setHasAPIKey(false);
    runtime->setBanner(Banner{QStringLiteral("Build failed"), std::nullopt, true});
    EXPECT_TRUE(banner->fixButton()->isHidden());
    harness.available = Provider::APIKey;
    harness.agent.setHasAPIKey(true);
    runtime->setBanner(Banner{QStringLiteral("Couldn't load version 1"), std::nullopt, false});
    EXPECT_TRUE(banner->fixButton()->isHidden());
}

// Pasting and saving by keys alone is the keyboard test's; here, what a key may be, and where
// a key that can't be saved is told.
TEST_F(Window, AKeyOnTheSetupScreenIsTrimmedSavedAndNamedByWhereItCameFrom)
{
    harness.agent.setHasAPIKey(false);
    launch();
    AgentAccessRow *access = open().setupView()->accessRow();
    access->keyField()->setText(QStringLiteral(" \t "));
    EXPECT_FALSE(access->saveButton()->isEnabled());
    access->save();
    EXPECT_FALSE(AgentConfig::savedKey());

    // A folder where the key file goes makes the write fail.
    QDir().mkpath(AgentConfig::keyPath());
    access->keyField()->setText(QStringLiteral("  sk-pasted\t"));
    access->save();
    EXPECT_FALSE(access->error().isEmpty());
    EXPECT_EQ(access->keyField()->text(), QStringLiteral("  sk-pasted\t"));
    QDir(AgentConfig::keyPath()).removeRecursively();

    access->save();
    EXPECT_EQ(AgentConfig::savedKey(), QStringLiteral("sk-pasted"));
    EXPECT_TRUE(harness.agent.hasAPIKey());
    EXPECT_FALSE(access->keyField()->isVisible());
    EXPECT_TRUE(access->error().isEmpty());
    EXPECT_NE(access->detail(), QStringLiteral("From the OPENAI_API_KEY environment variable."));

    AgentConfig::saveAPIKey(std::nullopt);
    qputenv("OPENAI_API_KEY", "sk-env");
    window.reset();
    EXPECT_EQ(open().setupView()->accessRow()->detail(), "From the OPENAI_API_KEY environment variable.");
}

} // namespace
