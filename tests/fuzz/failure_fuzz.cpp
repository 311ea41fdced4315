// A failed request's body, whatever the service or a proxy put there, becomes a Failure
// with words for the user.
#include "model_service/OpenAI.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    const int status = 400 + (data[0] << 8 | data[1]) % 200;
    const QByteArray body(reinterpret_cast<const char *>(data + 2), qsizetype(size - 2));
    const zentoro::OpenAI::Failure failure = zentoro::OpenAI::failure(status, body);
    if (failure.errorDescription().isEmpty())
        std::abort();
    return 0;
}
