#pragma once

#include "runtime/Workspace.h"

#include "resources/Kit/Sources/ZentoroHostInterface/include/zentoro_host.h"

#include <QByteArray>
#include <QString>

namespace zentoro::test {

// Enough of a version's library for loading without Swift: a factory that makes no view, and
// the kit's entry points, answering with interface `interfaceVersion`.
QByteArray standInLibrary(int interfaceVersion = ZENTORO_HOST_INTERFACE_VERSION);

// The system's C compiler, or nothing when there is none.
QString cCompiler();

// Compiles `body` (C source) with `cc` as version `number`'s library in `workspace`;
// a failure to compile fails the test.
void buildVersionLibrary(const QString &cc, const Workspace &workspace, int number,
                         const QByteArray &body = standInLibrary());

} // namespace zentoro::test
