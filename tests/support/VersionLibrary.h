#pragma once

#include "runtime/Workspace.h"

#include <QByteArray>
#include <QString>

namespace zentoro::test {

// A factory that makes no view: enough of a version's library for loading without Swift.
inline constexpr char emptyFactory[] = "void *zentoro_make_root_view(void) { return 0; }\n";

// The system's C compiler, or nothing when there is none.
QString cCompiler();

// Compiles `body` (C source) with `cc` as version `number`'s library in `workspace`;
// a failure to compile fails the test.
void buildVersionLibrary(const QString &cc, const Workspace &workspace, int number,
                         const QByteArray &body = emptyFactory);

} // namespace zentoro::test
