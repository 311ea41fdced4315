// Compiler output on its way to the model: never longer than the cap plus its notice, and
// never naming the copy's folders.
#include "core/Text.h"
#include "runtime/BuildSteps.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString sources = QStringLiteral("/home/ada/.local/share/Zentoro/Apps/Kitchen Timer/Sources");
    const QString entry = QStringLiteral("/home/ada/.local/share/Zentoro/Apps/Kitchen Timer/Build/ZentoroEntry.swift");
    const QString output = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString cleaned = zentoro::BuildSteps::clean(output, sources, entry);
    if (zentoro::Text::characterCount(cleaned) > zentoro::BuildSteps::outputLimit + 64)
        std::abort();
    return 0;
}
