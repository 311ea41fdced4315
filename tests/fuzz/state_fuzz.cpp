// "state.json" as a crash or a user may have left it: decoding gives a state or none, and
// a state written again reads back the same.
#include "runtime/RuntimeState.h"

#include <cstdlib>

using zentoro::RuntimeState;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<RuntimeState> state = RuntimeState::decode(bytes);
    if (state && RuntimeState::decode(state->encode()) != state)
        std::abort();
    return 0;
}
