#include "core/SupportFolder.h"

#include <QStandardPaths>

namespace zentoro {

QString supportFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Zentoro");
}

} // namespace zentoro
