// JSON text: decoding never fails but by JSON::Error, and what decodes encodes to text
// that decodes to the same value.
#include "core/JSON.h"

#include <cstdlib>

using zentoro::JSON;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    JSON value;
    try {
        value = JSON::decode(bytes);
    } catch (const JSON::Error &) {
        return 0;
    }
    if (JSON::decode(value.encode()) != value)
        std::abort();
    return 0;
}
