#pragma once

#include "runtime/Kit.h"

#include <QString>

#include <optional>

namespace zentoro::test {

// The Swift compiler: `swiftc` on PATH, else the toolchain in /opt/swift; none when absent.
std::optional<QString> swiftc();

// The kit built once for this test program, in its private support folder.
const Kit::Build &sharedKit();

// Compiles `source` (which defines AppRoot) with the generated entry file into a library,
// as an app build does; returns its path, or an empty string and the compiler's words.
QString buildApp(const QString &module, const QString &source, QString *error);

// Builds the app as `buildApp` does and opens its library; none, with a test failure, when
// either step fails.
void *loadApp(const QString &module, const QString &source);

} // namespace zentoro::test

// Skips the test, saying why, when no Swift compiler is installed.
#define ZENTORO_REQUIRE_SWIFTC()                                                                    \
    if (!zentoro::test::swiftc())                                                                   \
    GTEST_SKIP() << "No Swift compiler found (swiftc on PATH or in /opt/swift/usr/bin); skipped."
