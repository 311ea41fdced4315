#pragma once

#include "core/Defaults.h"
#include "runtime/Runtime.h"
#include "runtime/Shell.h"
#include "support/Await.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

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
        cc_ = QStandardPaths::findExecutable(QStringLiteral("cc"));
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
        QDir().mkpath(workspace.version(number) + QStringLiteral("/Sources"));
        writeFile(workspace.version(number) + QStringLiteral("/Sources/AppRoot.swift"), sourceText(number).toUtf8());
        const QString source = workspace.version(number) + QStringLiteral("/lib.c");
        writeFile(source, "void *zentoro_make_root_view(void) { return 0; }\n");
        const Shell::Result result =
            await(Shell::run(cc_, {"-shared", "-fPIC", "-o", workspace.dylib(number), source}));
        ASSERT_EQ(result.status, 0) << result.output.toStdString();
        VersionRecord record{number, QDateTime(QDate(2025, 3, 1), QTime(14, 5), Qt::UTC),
                             QStringLiteral("Version %1").arg(number), crashed};
        state.versions.append(record);
        state.nextNumber = number + 1;
    }

    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }

    static QByteArray readFile(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // A runtime launched on `state`, with its events collected, once the compiler search is over.
    Runtime &launch()
    {
        QDir().mkpath(workspace.root);
        state.write(workspace.stateFile());
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
