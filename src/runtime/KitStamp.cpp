#include "runtime/KitStamp.h"

#include "core/AtomicFile.h"
#include "core/JSON.h"

#include <QFile>

namespace zentoro {

std::optional<KitStamp> KitStamp::read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    try {
        const JSON stamp = JSON::decode(file.readAll());
        const std::optional<QString> kit = stamp.stringAt(QStringLiteral("kit"));
        const std::optional<QString> compiler = stamp.stringAt(QStringLiteral("compiler"));
        if (!kit || !compiler)
            return std::nullopt;
        return KitStamp{*kit, *compiler};
    } catch (const JSON::Error &) {
        return std::nullopt;
    }
}

std::optional<QString> KitStamp::write(const QString &path) const
{
    const JSON stamp = JSON::object({{QStringLiteral("compiler"), compiler}, {QStringLiteral("kit"), kit}});
    return AtomicFile::write(path, stamp.encode());
}

} // namespace zentoro
