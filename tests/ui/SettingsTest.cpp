// The settings window over a real runtime and the panel's agent harness: what its rows save,
// what the next request reads, how it is opened, and the menus around it.
#include "CopyOnDisk.h"
#include "PanelHarness.h"

#include "agent/ModelRequest.h"
#include "model_service/AgentConfig.h"
#include "model_service/ServiceOrigin.h"
#include "ui/AboutDialog.h"
#include "ui/MainWindow.h"
#include "ui/SettingsView.h"
#include "ui/ZentoroCommands.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QNetworkReply>
#include <QPushButton>
#include <QSplitter>
#include <QTest>
#include <QToolButton>

using namespace zentoro;

namespace {

class Settings : public test::CopyOnDisk {
protected:
    void TearDown() override
    {
        window.reset();
        qunsetenv("OPENAI_API_KEY");
        qunsetenv("ZENTORO_API_BASE");
        QDir(AgentConfig::keyPath()).removeRecursively();
        AgentConfig::saveAPIKey(std::nullopt);
        ServiceOrigin::save(QString());
        for (const char *key : {"model", "reasoningEffort"})
            Defaults::remove(QString::fromLatin1(key));
    }

    MainWindow &open()
    {
        window = std::make_unique<MainWindow>(*runtime, harness.agent);
        window->show();
        return *window;
    }

    SettingsView &settings()
    {
        window->commands()->showSettings();
        return *window->commands()->settingsView();
    }

    JSON nextRequest() { return ModelRequest::request(harness.agent, Provider::APIKey); }

    test::PanelHarness harness;
    std::unique_ptr<MainWindow> window;
};

TEST_F(Settings, TheKeyRowSavesAndRemovesTheKeyAndSaysWhereTheKeyInUseComesFrom)
{
    qputenv("OPENAI_API_KEY", "sk-env");
    launch();
    open();
    SettingsView &view = settings();
    EXPECT_EQ(view.keyField()->placeholderText(), "Paste to replace");
    EXPECT_FALSE(view.removeKeyButton()->isVisibleTo(&view));
    EXPECT_EQ(view.keyNote(), "Using OPENAI_API_KEY from the environment.");

    QTest::keyClicks(view.keyField(), QStringLiteral(" \t"));
    EXPECT_FALSE(view.saveKeyButton()->isEnabled());
    view.keyField()->setText(QStringLiteral(" sk-typed "));
    QTest::keyClick(view.keyField(), Qt::Key_Return);
    EXPECT_EQ(AgentConfig::savedKey(), "sk-typed");
    EXPECT_EQ(view.keyNote(), "Saved.");
    EXPECT_TRUE(view.keyField()->text().isEmpty());
    EXPECT_TRUE(view.removeKeyButton()->isVisibleTo(&view));

    // The environment's key takes over again.
    view.removeKeyButton()->click();
    EXPECT_FALSE(AgentConfig::savedKey());
    EXPECT_TRUE(harness.agent.hasAPIKey());
    EXPECT_EQ(view.keyNote(), "Removed.");
    EXPECT_FALSE(view.removeKeyButton()->isVisibleTo(&view));

    // A folder where the key file goes makes the save fail; the typed key stays.
    qunsetenv("OPENAI_API_KEY");
    QDir().mkpath(AgentConfig::keyPath());
    view.keyField()->setText(QStringLiteral("sk-again"));
    view.saveKeyButton()->click();
    EXPECT_EQ(view.keyField()->text(), "sk-again");
    EXPECT_TRUE(view.keyNote().startsWith("Couldn't save the key")) << view.keyNote().toStdString();
    EXPECT_FALSE(harness.agent.hasAPIKey());
    EXPECT_EQ(view.keyField()->placeholderText(), "sk-…");
}

TEST_F(Settings, ModelAndEffortAreWrittenAsTheyChangeAndTheNextRequestReadsThem)
{
    launch();
    open();
    SettingsView &view = settings();
    view.modelField()->selectAll();
    QTest::keyClicks(view.modelField(), QStringLiteral("my-local-model"));
    EXPECT_EQ(nextRequest().stringAt("model"), "my-local-model");
    const auto shownModel = [&] {
        for (QLabel *label : window->agentPanel()->findChildren<QLabel *>())
            if (label->accessibleName() == u"Model")
                return label->text();
        return QString();
    };
    EXPECT_EQ(shownModel(), "my-local-model");

    QMenu *menu = view.modelMenuButton()->menu();
    emit menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 4);
    menu->actions()[2]->trigger();
    EXPECT_EQ(view.modelField()->text(), "gpt-6-luna");
    EXPECT_EQ(nextRequest().stringAt("model"), "gpt-6-luna");

    // The plan's models are offered only while requests use the plan.
    view.planModels = [] { return QList<SettingsView::ModelChoice>{{"Plan Model", "plan-slug"}}; };
    EXPECT_EQ(view.modelChoices().size(), 4);
    harness.available = Provider::ChatGPT;
    harness.agent.setHasAPIKey(false);
    EXPECT_EQ(view.modelChoices(), (QList<SettingsView::ModelChoice>{{"Plan Model", "plan-slug"}}));

    QComboBox *effort = view.effortPicker();
    ASSERT_EQ(effort->count(), 4);
    EXPECT_EQ(effort->currentText(), "Model default");
    effort->setCurrentIndex(effort->findText("High"));
    EXPECT_EQ(nextRequest().find("reasoning")->stringAt("effort"), "high");
    effort->setCurrentIndex(effort->findText("Model default"));
    EXPECT_EQ(Defaults::string("reasoningEffort"), "");
    EXPECT_FALSE(nextRequest().find("reasoning"));
}

TEST_F(Settings, TheModelServiceRowSavesAnAddressAndSaysWhenTheEnvironmentWins)
{
    launch();
    open();
    SettingsView &view = settings();
    EXPECT_EQ(view.originNote(), "Requests go to https://api.openai.com.");
    EXPECT_FALSE(view.saveOriginButton()->isEnabled());

    view.originField()->setText(QStringLiteral("localhost:8080"));
    view.saveOrigin();
    EXPECT_FALSE(ServiceOrigin::saved());
    EXPECT_TRUE(view.originNote().startsWith("“localhost:8080” isn't a server's address."))
        << view.originNote().toStdString();

    view.originField()->setText(QStringLiteral(" http://127.0.0.1:8080/ "));
    QTest::keyClick(view.originField(), Qt::Key_Return);
    EXPECT_EQ(ServiceOrigin::saved(), "http://127.0.0.1:8080");
    EXPECT_EQ(view.originNote(), "Saved. Requests go to http://127.0.0.1:8080.");
    EXPECT_FALSE(view.saveOriginButton()->isEnabled());

    qputenv("ZENTORO_API_BASE", "http://127.0.0.1:9999/");
    window->commands()->settingsView()->close();
    window.reset();
    open();
    EXPECT_EQ(settings().originNote(), "This run uses http://127.0.0.1:9999 from ZENTORO_API_BASE; the address saved "
                                       "here applies when that isn't set.");
}

TEST_F(Settings, OneWindowOpensFromTheGearAndTheFileMenuBesideTheMenusOfTheProgram)
{
    makeVersion(1);
    launch();
    MainWindow &main = open();
    ZentoroCommands *commands = main.commands();
    EXPECT_EQ(commands->settings()->shortcut(), QKeySequence(QStringLiteral("Ctrl+,")));
    EXPECT_EQ(commands->quit()->shortcut(), QKeySequence(QStringLiteral("Ctrl+Q")));
    EXPECT_EQ(main.agentPanel()->settingsButton()->toolTip(), "Settings");
    main.agentPanel()->settingsButton()->click();
    SettingsView *view = commands->settingsView();
    ASSERT_TRUE(view && view->isVisible());
    EXPECT_EQ(view->width(), SettingsView::formWidth);
    view->close();
    commands->settings()->trigger();
    EXPECT_EQ(commands->settingsView(), view);
    EXPECT_TRUE(view->isVisible());
    EXPECT_EQ(main.findChildren<SettingsView *>().size(), 1);
    EXPECT_EQ(view->versionsBuilt()->text(), "1");
    // The window follows the compiler's search while it is open.
    ASSERT_TRUE(view->checkAgainButton()->isVisibleTo(view)) << "the compiler is missing";
    QList<bool> enabledWhileLooking;
    QObject::connect(runtime.get(), &Runtime::toolchainChanged, view, [&] {
        if (runtime->toolchain().kind() == Toolchain::Case::Checking)
            enabledWhileLooking << view->checkAgainButton()->isEnabled();
    });
    view->checkAgainButton()->click();
    ASSERT_TRUE(test::spinUntil(
        [&] { return !enabledWhileLooking.isEmpty() && runtime->toolchain().kind() == Toolchain::Case::Missing; }));
    EXPECT_EQ(enabledWhileLooking, QList<bool>{false});
    EXPECT_TRUE(view->checkAgainButton()->isEnabled());

    // No update feed, so no update item, and nothing reaches out on its own.
    QStringList items;
    for (QMenu *menu : main.menuBar()->findChildren<QMenu *>())
        for (QAction *action : menu->actions())
            items << action->text();
    EXPECT_FALSE(items.join(u'\n').contains("Update", Qt::CaseInsensitive)) << items.join(", ").toStdString();
    QTest::qWait(200);
    EXPECT_TRUE(qApp->findChildren<QNetworkReply *>().isEmpty());

    commands->about()->trigger();
    const QStringList versions = AboutDialog::versions(*runtime);
    EXPECT_EQ(versions, (QStringList{"Version " ZENTORO_VERSION, QStringLiteral("Qt ") + qVersion(),
                                     "Swift toolchain: not installed"}));
    const QString notices = AboutDialog::notices();
    for (const char *part : {"GNU Lesser General Public License version 3", "SIL OPEN FONT LICENSE Version 1.1",
                             "The Anybody Project Authors", "Daniel Vrátil"})
        EXPECT_TRUE(notices.contains(QString::fromUtf8(part))) << part;
    EXPECT_TRUE(commands->aboutDialog()->isVisible());
}

TEST_F(Settings, TheWindowKeepsItsSizeAndPanelWidthInTheCopysOwnSettings)
{
    launch();
    MainWindow &main = open();
    main.resize(1000, 700);
    main.findChild<QSplitter *>()->setSizes({550, 450});
    main.saveLayout();

    window.reset();
    MainWindow &next = open();
    EXPECT_EQ(next.size(), QSize(1000, 700));
    EXPECT_EQ(next.agentPanel()->width(), 450);
    EXPECT_EQ(Defaults::suiteValue(workspace.defaultsSuite(), "panelWidth"), 450);
    EXPECT_FALSE(Defaults::value("panelWidth").isValid());
}

} // namespace
