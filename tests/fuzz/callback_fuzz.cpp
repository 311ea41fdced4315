// A request head on the sign-in's loopback listener, from whatever connects to it: the answer
// is always a whole response, and only a GET of the callback path hands parameters on.
#include "chatgpt/CallbackHead.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString head = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const zentoro::CallbackHead::Answer answer = zentoro::CallbackHead::answer(head,
                                                                               QStringLiteral("http://127.0.0.1:1455"));
    if (!answer.response.startsWith("HTTP/1.1 "))
        std::abort();
    if (answer.parameters && !head.startsWith(QStringLiteral("GET ")))
        std::abort();
    return 0;
}
