#pragma once

#include <QByteArrayView>
#include <QLatin1StringView>
#include <QString>

namespace zentoro::DataURL {

// "data:<mediaType>;base64,<bytes in base64>". Written straight into the string: a request
// carries a few screenshots of hundreds of kilobytes each, encoded afresh every time.
QString make(QLatin1StringView mediaType, QByteArrayView bytes);

} // namespace zentoro::DataURL
