#pragma once

#include "core/Defaults.h"
#include "runtime/Runtime.h"
#include "support/Await.h"
#include "support/Files.h"
#include "support/VersionLibrary.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <memory>

namespace zentoro::test {

// A copy whose versions are made by hand: each version's library is a C library that exports
// the view factory (returning no view), and its "Sources" holds one file naming the version.
// No Swift compiler is needed; the compiler counts as missing unless a test says otherwise.
class CopyOnDisk : public ::testing::Test {
protected:
    void SetUp() override
    {
        cc_ = cCompiler();
        if (cc_.isEmpty())
            GTEST_SKIP() << "No C compiler to make version libraries with.";
        const QString test = QString::fromUtf8(::testing::UnitTest::GetInstance()->current_test_info()->name());
        workspace = Workspace::forName(QStringLiteral("Copy ") + test);
        QDir(workspace.root).removeRecursively();
        Defaults::setValue(QStringLiteral("ZentoroNoLogRedirect"), true);
        Defaults::setValue(QStringLiteral("ZentoroSimulateMissingTools"), true);
        Defaults::remove(QStringLiteral("ZentoroSafeMode"));
        Defaults::remove(QStringLiteral("showAgent"));
    }

    static QString sourceText(int number) { return QStringLiteral("// version %1\n").arg(number); }

    void makeVersion(int number, bool crashed = false)
    {
        writeFile(workspace.version(number) + QStringLiteral("/Sources/AppRoot.swift"), sourceText(number).toUtf8());
        buildVersionLibrary(cc_, workspace, number);
        VersionRecord record{number, QDateTime(QDate(2025, 3, 1), QTime(14, 5), Qt::UTC),
                             QStringLiteral("Version %1").arg(number), crashed};
        state.versions.append(record);
        state.nextNumber = number + 1;
    }

    // A runtime launched on `state`, with its events collected, once the compiler search is over.
    Runtime &launch()
    {
        QDir().mkpath(workspace.root);
        state.write(workspace.stateFile());
        return launchOnDisk();
    }

    // The same on whatever "state.json" the copy holds.
    Runtime &launchOnDisk()
    {
        runtime = std::make_unique<Runtime>(workspace);
        runtime->onEvent = [this](const QString &shown, const QString &told) {
            shownEvents.append(shown);
            toldEvents.append(told);
        };
        runtime->launch();
        spinUntil([this] { return runtime->toolchain().kind() != Toolchain::Case::Checking; });
        return *runtime;
    }

    QString cc_;
    Workspace workspace;
    RuntimeState state;
    std::unique_ptr<Runtime> runtime;
    QStringList shownEvents;
    QStringList toldEvents;
};

} // namespace zentoro::test
