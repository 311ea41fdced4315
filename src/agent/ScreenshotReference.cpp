#include "agent/ScreenshotReference.h"

#include <QUrl>

namespace zentoro::ScreenshotReference {

QString fromFile(const QString &path)
{
    return QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
}

std::optional<QString> file(const QString &address)
{
    if (!address.startsWith(QLatin1StringView("file:"), Qt::CaseInsensitive))
        return std::nullopt;
    // Tolerant, so the addresses that earlier versions wrote with blanks and letters
    // left unencoded still name their files.
    const QUrl url(address, QUrl::TolerantMode);
    return url.isValid() && url.isLocalFile() ? url.toLocalFile() : QString();
}

} // namespace zentoro::ScreenshotReference
