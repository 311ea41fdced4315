#pragma once

#include <QByteArrayView>
#include <QLatin1StringView>
#include <QString>

namespace zentoro::DataURL {

// Which code encodes: the vector instructions of an x86-64 processor that has them, or the
// portable code that every other processor runs.
enum class Instructions { Fastest, Portable };

// "data:<mediaType>;base64,<bytes in base64>". Written straight into the string: a request
// carries a few screenshots of hundreds of kilobytes each, encoded afresh every time.
QString make(QLatin1StringView mediaType, QByteArrayView bytes, Instructions instructions = Instructions::Fastest);

} // namespace zentoro::DataURL
