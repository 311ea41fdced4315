// Paths the model chooses: whatever it sends, a resolved path lies inside "Sources", also
// when followed through the symbolic links there, or the tool is refused with words.
#include "runtime/Workspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdlib>

using zentoro::Workspace;

namespace {

// A copy whose sources hold a file, a folder, and a link leading out of them.
const Workspace &workspace()
{
    static QTemporaryDir root;
    static const Workspace made = [] {
        const Workspace copy{QStringLiteral("Fuzz"), root.path() + QStringLiteral("/Apps/Fuzz")};
        QDir().mkpath(copy.sources() + QStringLiteral("/Views"));
        QFile file(copy.sources() + QStringLiteral("/AppRoot.swift"));
        file.open(QIODevice::WriteOnly);
        QFile::link(root.path(), copy.sources() + QStringLiteral("/Outside"));
        return copy;
    }();
    return made;
}

bool inside(const QString &path, const QString &folder)
{
    return path.startsWith(folder + u'/');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString sources = QDir::cleanPath(workspace().sources());
    QString resolved;
    try {
        resolved = workspace().resolve(path);
    } catch (const Workspace::Failure &failure) {
        if (failure.message.isEmpty())
            std::abort();
        return 0;
    }
    if (!inside(resolved, sources))
        std::abort();
    // The deepest part that exists must lie inside the sources once links are followed.
    QString existing = resolved;
    while (!QFileInfo::exists(existing) && inside(existing, sources))
        existing = QFileInfo(existing).path();
    const QString real = QFileInfo(existing).canonicalFilePath();
    if (real != QFileInfo(sources).canonicalFilePath() && !inside(real, QFileInfo(sources).canonicalFilePath()))
        std::abort();
    return 0;
}
