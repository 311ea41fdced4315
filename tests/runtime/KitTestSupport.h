#pragma once

#include "runtime/Kit.h"
#include "runtime/KitHostView.h"
#include "runtime/Workspace.h"

#include <QCoroTask>
#include <QImage>
#include <QString>
#include <QWidget>

#include <optional>

namespace zentoro::test {

// The Swift compiler: `swiftc` on PATH, else the toolchain in /opt/swift; none when absent.
std::optional<QString> swiftc();

// The copy whose name and settings suite the apps of `buildApp` are built with.
const Workspace &kitTestCopy();

// The kit built once for this test program, in its private support folder.
const Kit::Build &sharedKit();

// Compiles `source` (which defines AppRoot) with the generated entry file into a library,
// as an app build does; returns its path, or an empty string and the compiler's words.
QString buildApp(const QString &module, const QString &source, QString *error);

// Compiles the Swift files `files` (which define AppRoot) as `buildApp` does.
QCoro::Task<QString> buildAppFiles(const QString &module, const QStringList &files, QString *error);

// Builds the app as `buildApp` does and opens its library; none, with a test failure, when
// either step fails.
void *loadApp(const QString &module, const QString &source);

// A new root view of the app whose library `handle` is, in a shown container of `size`.
struct KitWindow {
    QWidget container;
    KitHostView *view;
    KitWindow(void *handle, QSize size);
    QImage image() const { return view->grab().toImage(); }
    void click(QPoint at) const;
};

} // namespace zentoro::test

// Skips the test, saying why, when no Swift compiler is installed.
#define ZENTORO_REQUIRE_SWIFTC()                                                                                       \
    if (!zentoro::test::swiftc())                                                                                      \
    GTEST_SKIP() << "No Swift compiler found (swiftc on PATH or in /opt/swift/usr/bin); skipped."
