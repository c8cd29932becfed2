#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__ARM_NEON) && defined(__aarch64__) && defined(__ORDER_LITTLE_ENDIAN__)
#include <arm_neon.h>
#endif

namespace base {

/// The first line end in [begin, end), or `end`.
///
/// Looks at sixteen bytes at a time. Lines of drawings are short: a call of memchr takes longer
/// than one such look, or two.
inline const char* findLineEnd(const char* begin, const char* end) {
#if defined(__SSE2__)
    const __m128i lineEnds = _mm_set1_epi8('\n');
    for (; end - begin >= 16; begin += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begin));
        const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(block, lineEnds));
        if (found != 0) {
            return begin + __builtin_ctz(static_cast<unsigned>(found));
        }
    }
#elif defined(__ARM_NEON) && defined(__aarch64__) && defined(__ORDER_LITTLE_ENDIAN__)
    const uint8x16_t lineEnds = vdupq_n_u8('\n');
    for (; end - begin >= 16; begin += 16) {
        const uint8x16_t block = vld1q_u8(reinterpret_cast<const std::uint8_t*>(begin));
        // Four bits a byte.
        const uint8x8_t nibbles = vshrn_n_u16(vreinterpretq_u16_u8(vceqq_u8(block, lineEnds)), 4);
        const std::uint64_t found = vget_lane_u64(vreinterpret_u64_u8(nibbles), 0);
        if (found != 0) {
            return begin + __builtin_ctzll(found) / 4;
        }
    }
#endif
    while (begin != end && *begin != '\n') {
        ++begin;
    }
    return begin;
}

} // namespace base
