#pragma once

#include "core/MainTask.h"
#include "runtime/Banner.h"
#include "runtime/BuildOutcome.h"
#include "runtime/KitStamp.h"
#include "runtime/RuntimeState.h"
#include "runtime/Toolchain.h"
#include "runtime/Workspace.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <optional>

namespace zentoro {

class PluginContainerView;

// The app runtime of this process: the version store, the compiler, the loaded version
// and the places that show it. Lives on the main thread; a write that changes nothing
// notifies nobody.
class Runtime : public QObject {
    Q_OBJECT
    Q_PROPERTY(int generation READ generation NOTIFY generationChanged)
    Q_PROPERTY(bool isBuilding READ isBuilding NOTIFY isBuildingChanged)
    Q_PROPERTY(bool isPreparingKit READ isPreparingKit NOTIFY isPreparingKitChanged)
    Q_PROPERTY(bool safeMode READ safeMode NOTIFY safeModeChanged)

public:
    // A version's view factory: returns the hosted root view's handle, one reference
    // for the caller. Called on the main thread only.
    using Factory = void *(*)();

    // A version counts as good once the process has lived this long after its load.
    static constexpr std::chrono::seconds provingTime{4};
    // The summary of a version built from the starter app.
    static QString originalAppSummary() { return QStringLiteral("The original app"); }

    explicit Runtime(Workspace workspace, QObject *parent = nullptr);

    const Workspace &workspace() const { return workspace_; }
    const RuntimeState &state() const { return state_; }
    const Toolchain &toolchain() const { return toolchain_; }
    QString toolchainDescription() const { return toolchain_.description(); }
    std::optional<int> loadedVersion() const { return loadedVersion_; }
    int generation() const { return generation_; }
    bool isBuilding() const { return isBuilding_; }
    // The build under way is compiling the UI kit for this compiler first, which only the
    // first build on a computer does, and which takes a while.
    bool isPreparingKit() const { return isPreparingKit_; }
    bool safeMode() const { return safeMode_; }
    const std::optional<Banner> &banner() const { return banner_; }
    void setBanner(std::optional<Banner> banner);

    // The loaded version's factory and the library it came from; null before any load.
    Factory factory() const { return factory_; }
    void *library() const { return library_; }

    // The containers that show the hosted view; one leaves by itself when it is destroyed.
    QList<PluginContainerView *> containers() const;
    void addContainer(PluginContainerView *container);

    // Tells the agent of an event: the line shown in the chat, then the note for the model.
    std::function<void(const QString &shown, const QString &told)> onEvent = [](const QString &, const QString &) {};

    // Looks for the compiler again and stores what it finds. A build asked for meanwhile
    // waits for the answer.
    QCoro::Task<> checkToolchain();
    // Starts the toolchain's installation and waits for it in a task of its own; when a
    // compiler turns up and nothing runs yet, builds the app.
    void installToolchain();

    // Compiles the source folder into the next version and loads it. Never throws.
    QCoro::Task<BuildOutcome> build(QString summary);

    // Opens version `version` in this process and makes it the one shown. None on success,
    // otherwise the error text; a failure leaves what is on screen as it was.
    std::optional<QString> load(int version);
    // A container has drawn generation `generation` on screen for the first time. The loaded
    // version's proving time starts at the first such frame, not at the load: a version that
    // is never drawn, or dies drawing, never passes for good.
    void versionDrawn(int generation);

    // Once per process, before the first frame: starts the console log, judges the previous
    // run, loads the version to run and begins looking for the compiler. A second call does nothing.
    void launch();
    // Going back, building again, starting over and restarting: the version menu's, the
    // Develop menu's and the banner's operations. Each tells the agent what changed behind its back.
    // Restores version `number`'s sources and loads it; refused while a build runs.
    void revert(int number);
    QCoro::Task<> rebuild();
    // Puts the starter app in the source folder and builds it as a new version.
    QCoro::Task<> resetToOriginal();
    // Hands over to a script that waits for this process to end and starts the program
    // again, then quits in order; stays running with a banner when the script can't start.
    void relaunch(bool safeMode);

    // Writes the hosted app's stored settings, its own suite and the standard defaults, to
    // disk through the loaded version's kit: Foundation on Linux keeps them in memory until
    // asked. Runs every second while a version is loaded and before every orderly quit.
    void saveHostedSettings() const;

    // PNG bytes of the hosted view in the key window's container, or the first shown one,
    // at most `maxWidth` pixels wide; none when no version is loaded or no container is showing.
    std::optional<QByteArray> snapshot(double maxWidth) const;

signals:
    void stateChanged();
    void toolchainChanged();
    // A look for the compiler has ended, whatever it found.
    void toolchainChecked();
    void loadedVersionChanged();
    void generationChanged();
    void isBuildingChanged();
    void isPreparingKitChanged();
    void safeModeChanged();
    void bannerChanged();

private:
    // Replaces the state and writes "state.json".
    void saveState(RuntimeState state);
    void setToolchain(Toolchain toolchain);
    void setIsBuilding(bool building);
    void setIsPreparingKit(bool preparing);
    QCoro::Task<BuildOutcome> compileAndLoad(int number, QString summary);
    // The number the next build takes: `nextNumber`, or past it while a version folder there
    // isn't empty, so that a lost "state.json" never costs a version.
    int freeNumber() const;

    // One run of the compiler over the Swift files in `sources` as version `number`'s module,
    // against the kit of the compiler found, into the library `output`. A failure's words, or
    // the cleaned output of a success.
    struct Compilation {
        std::optional<QString> failure;
        QString output;
    };
    QCoro::Task<Compilation> compile(int number, QString sources, QString output);
    // What a version built now is built against; empty fields when there is no compiler.
    KitStamp currentKitStamp() const;
    // Whether version `number` may be loaded before the compiler has told its version: it
    // was built with this kit by the compiler file found now, or there is no compiler that
    // could build it again.
    bool runsAsBuilt(int number) const;
    // Whether version `number`'s stamp names the kit of the compiler found.
    bool builtWithCurrentKit(int number) const;
    // The end of going back to version `number`: the banner, or the news for the agent.
    void tellReverted(int number, const std::optional<QString> &error);
    // The banner for a version that couldn't be loaded.
    static Banner couldNotLoad(int number, const QString &error);
    // Loads version `number`, first building it again from its own copy of the sources when
    // it was built against another kit or compiler than the one found: a process holds one
    // Swift runtime and one kit per soname. Tells the agent when it was built again.
    QCoro::Task<std::optional<QString>> loadWithCurrentKit(int number);
    // Puts the starter app in the source folder; false, with a banner, when that fails.
    bool installSeed();
    // Starts saving the hosted app's settings every second, once a version is loaded.
    void keepSavingHostedSettings();

    Workspace workspace_;
    RuntimeState state_;
    Toolchain toolchain_;
    std::optional<int> loadedVersion_;
    int generation_ = 0;
    bool isBuilding_ = false;
    bool isPreparingKit_ = false;
    bool safeMode_ = false;
    std::optional<Banner> banner_;
    Factory factory_ = nullptr;
    void *library_ = nullptr;
    QList<QPointer<PluginContainerView>> containers_;
    bool launched_ = false;
    // The generation whose proving time has started.
    int provedGeneration_ = 0;
    // The watchdog's count of a held main thread when the version on probation was loaded:
    // a version that held it while starting is a crash while starting, though it came back.
    int stallsAtLoad_ = 0;
    bool heldWhileStarting() const;
    // Looks for the compiler under way.
    int checks_ = 0;
    QTimer *settingsSaver_ = nullptr;
};

} // namespace zentoro
