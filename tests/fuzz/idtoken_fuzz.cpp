// An ID token and a key set as the sign-in service, or anybody in its place, might send them:
// verification ends in claims or in one of its reasons, never otherwise. The first line of the
// input is the token, the rest the key set.
#include "chatgpt/IDToken.h"

#include <QDateTime>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const qsizetype lineEnd = input.indexOf('\n');
    const QString token = QString::fromUtf8(lineEnd < 0 ? input : input.left(lineEnd));
    zentoro::JSON keys;
    try {
        keys = zentoro::JSON::decode(lineEnd < 0 ? QByteArray() : input.mid(lineEnd + 1));
    } catch (const zentoro::JSON::Error &) {
    }
    try {
        const zentoro::IDToken::Claims claims = zentoro::IDToken::verify(token, keys,
                                                                         QStringLiteral("https://auth.example"),
                                                                         QStringLiteral("client"), QStringLiteral("n1"),
                                                                         QDateTime::fromSecsSinceEpoch(1'700'000'000));
        if (claims.subject.isEmpty())
            std::abort();
    } catch (const zentoro::IDToken::Invalid &invalid) {
        if (invalid.reason.isEmpty())
            std::abort();
    }
    return 0;
}
