// The Responses event stream, fed in pieces of the sizes the input's first bytes choose:
// the reader ends in a result or a failure, never in anything else.
#include "model_service/ResponseStream.h"

#include <exception>

using zentoro::JSON;
using zentoro::OpenAI::ResponseStream;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    const size_t piece = size_t(data[0]) * 7 + data[1] + 1;
    const char *body = reinterpret_cast<const char *>(data + 2);
    const size_t length = size - 2;
    ResponseStream stream([](const JSON &) {});
    for (size_t at = 0; at < length && !stream.hasEnded(); at += piece)
        stream.feed(QByteArrayView(body + at, qsizetype(std::min(piece, length - at))));
    stream.finish();
    if (!stream.hasEnded())
        std::abort();
    try {
        (void)stream.result();
    } catch (const std::exception &) {
    }
    return 0;
}
