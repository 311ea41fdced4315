#pragma once

#include "core/MainTask.h"

#include <QString>
#include <QStringList>

#include <QCoroTask>

#include <optional>

namespace zentoro::Kit {

// The hosted UI kit compiled for one compiler: the arguments an app build adds to link
// against it, or the words that say why it could not be built.
struct Build {
    QStringList arguments;
    QString error;

    bool ok() const { return error.isEmpty(); }
    bool operator==(const Build &) const = default;
};

// Names the kit's sources as compiled into this program: a digest of every file, so an
// edited kit never meets a stale cache.
QString version();

// "<kit version>-<compiler version>", the compiler's made safe for a file name: what an app
// build depends on. A version built under another identity must be built again before it
// shares a process with versions built under this one.
QString identity(const QString &compilerVersion);
// The kit's library: "libSwiftUI-<identity>.so", which is also its soname. Each identity has
// a soname of its own, so a library the dynamic linker already holds for one kit is never
// taken for another's.
QString libraryName(const QString &identity);

// `support/KitCache/<identity>`, shared by all copies.
QString cacheFolder(const QString &compilerVersion);

// `KitCache/<identity>` beside the program: the kit as `make` prepared it while building
// Zentoro, so a new user's first build doesn't wait for it. Used as it is when complete;
// never written by a running copy.
QString preparedFolder(const QString &compilerVersion);

// `lib/zentoro/KitCache/<identity>` under the program's prefix: where `make install` puts the
// prepared kit, since an installed program's folder (`bin`) is no place for libraries.
QString installedFolder(const QString &compilerVersion);

// The first complete one of the prepared kit beside the program and the installed one.
std::optional<QString> readyPreparedFolder(const QString &compilerVersion);

// Whether the kit for this compiler is there, prepared or cached, so a build needn't wait for it.
bool isReady(const QString &compilerVersion);

// -I, -L, -l and the run path for apps built against the kit in `folder`.
QStringList appArguments(const QString &folder);

// Makes sure the kit is in the cache for this compiler, building it there when it is not:
// in a folder of its own that is renamed into place, so a copy that builds at the same
// time, or a crash, never leaves a half-written cache. The compiler runs off the main thread.
// The prepared kit beside the program comes first when it is there. A failure's words are
// cleaned like any build output: paths relative to the kit's sources, cut to the same length.
QCoro::Task<Build> ensureBuilt(const TaskHandle &task, const QString &swiftc, const QString &compilerVersion);

// Builds the kit into `folder` unless it is complete there already, staged beside it and
// renamed into place.
QCoro::Task<Build> buildInto(const QString &folder, const TaskHandle &task, const QString &swiftc);

} // namespace zentoro::Kit
