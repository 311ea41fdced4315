#include "core/DataURL.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include <array>
#include <cstdint>
#include <cstring>

namespace zentoro::DataURL {

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The two characters of every 12 bits, side by side as they are stored: one look-up writes
// half of a group of three bytes.
const std::array<std::uint32_t, 4096> &pairs()
{
    static const auto table = [] {
        std::array<std::uint32_t, 4096> made{};
        for (std::uint32_t bits = 0; bits < 4096; ++bits) {
            const char16_t pair[2] = {char16_t(alphabet[bits >> 6]), char16_t(alphabet[bits & 63])};
            std::memcpy(&made[bits], pair, sizeof pair);
        }
        return made;
    }();
    return table;
}

char16_t *encodeWhole(const unsigned char *in, qsizetype groups, char16_t *out)
{
    const auto &table = pairs();
    for (qsizetype group = 0; group < groups; ++group, in += 3, out += 4) {
        const std::uint32_t bits = std::uint32_t(in[0]) << 16 | std::uint32_t(in[1]) << 8 | in[2];
        std::memcpy(out, &table[bits >> 12], 4);
        std::memcpy(out + 2, &table[bits & 0xfff], 4);
    }
    return out;
}

#if defined(__x86_64__)
// Eight groups at a time with AVX2, after "Faster Base64 Encoding and Decoding Using AVX2
// Instructions" (Muła, Kurz, Lemire): each lane spreads its twelve bytes into sixteen 6-bit
// values and maps those to the alphabet by range, and each character is widened to UTF-16 on
// the way out. Leaves the last groups, fewer than ten: each step reads four bytes past its 24.
__attribute__((target("avx2"))) char16_t *encodeWide(const unsigned char *&in, qsizetype &groups, char16_t *out)
{
    const __m256i spread = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10, //
                                            1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
    const __m256i shifts = _mm256_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                            '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0, //
                                            'a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                            '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0);
    for (; groups >= 10; groups -= 8, in += 24, out += 32) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 12));
        const __m256i bytes = _mm256_shuffle_epi8(_mm256_set_m128i(high, low), spread);
        const __m256i upper = _mm256_mulhi_epu16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x0fc0fc00)),
                                                 _mm256_set1_epi32(0x04000040));
        const __m256i lower = _mm256_mullo_epi16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x003f03f0)),
                                                 _mm256_set1_epi32(0x01000010));
        const __m256i values = _mm256_or_si256(upper, lower);
        // 0..25 and 26..51 both become 0 here, 52..63 become 1..12; then 0..25 become 13.
        __m256i range = _mm256_subs_epu8(values, _mm256_set1_epi8(51));
        const __m256i capitals = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
        range = _mm256_or_si256(range, _mm256_and_si256(capitals, _mm256_set1_epi8(13)));
        const __m256i characters = _mm256_add_epi8(_mm256_shuffle_epi8(shifts, range), values);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), _mm256_cvtepu8_epi16(_mm256_castsi256_si128(characters)));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + 16),
                            _mm256_cvtepu8_epi16(_mm256_extracti128_si256(characters, 1)));
    }
    return out;
}
#endif

void encodeTail(const unsigned char *in, qsizetype left, char16_t *out)
{
    const std::uint32_t bits = std::uint32_t(in[0]) << 16 | (left == 2 ? std::uint32_t(in[1]) << 8 : 0);
    out[0] = alphabet[bits >> 18];
    out[1] = alphabet[(bits >> 12) & 63];
    out[2] = left == 2 ? char16_t(alphabet[(bits >> 6) & 63]) : u'=';
    out[3] = u'=';
}

} // namespace

QString make(QLatin1StringView mediaType, QByteArrayView bytes, Instructions instructions)
{
    const QLatin1StringView data("data:"), base64(";base64,");
    const qsizetype groups = bytes.size() / 3, left = bytes.size() % 3;
    QString text(data.size() + mediaType.size() + base64.size() + (groups + (left ? 1 : 0)) * 4, Qt::Uninitialized);
    char16_t *out = reinterpret_cast<char16_t *>(text.data());
    for (const QLatin1StringView part : {data, mediaType, base64}) {
        for (const char character : part)
            *out++ = char16_t(static_cast<unsigned char>(character));
    }
    const auto *in = reinterpret_cast<const unsigned char *>(bytes.data());
    qsizetype whole = groups;
#if defined(__x86_64__)
    if (instructions == Instructions::Fastest && __builtin_cpu_supports("avx2"))
        out = encodeWide(in, whole, out);
#else
    Q_UNUSED(instructions);
#endif
    out = encodeWhole(in, whole, out);
    if (left)
        encodeTail(in + whole * 3, left, out);
    return text;
}

} // namespace zentoro::DataURL
