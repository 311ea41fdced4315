// A request head on the sign-in's loopback listener, from whatever connects to it: the answer
// is always a whole response, a page for a redirect and "not found" otherwise, and nothing but
// a GET hands parameters on.
#include "chatgpt/CallbackHead.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString head = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const zentoro::CallbackHead::Answer answer = zentoro::CallbackHead::answer(head,
                                                                               QStringLiteral("http://127.0.0.1:1455"));
    const bool page = answer.response.startsWith("HTTP/1.1 200 OK\r\n");
    if (page != answer.parameters.has_value() || (!page && !answer.response.startsWith("HTTP/1.1 404 Not Found\r\n")))
        std::abort();
    if (answer.parameters && !head.contains(QStringLiteral("GET")))
        std::abort();
    return 0;
}
