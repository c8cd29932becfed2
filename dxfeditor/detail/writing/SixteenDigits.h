#pragma once

#include "base/DigitWords.h"

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__ARM_NEON) && defined(__aarch64__) && defined(__ORDER_LITTLE_ENDIAN__)
#include <arm_neon.h>
#endif

namespace dxfeditor {

constexpr std::uint32_t eightDigits = 100'000'000;

/// The same as writeSixteenDigits, for any processor: eight digits at a time.
inline unsigned writeTwoWordsOfDigits(std::uint32_t upper, std::uint32_t lower, char* to) {
    const std::uint64_t first = base::splitDigits(upper);
    const std::uint64_t last = base::splitDigits(lower);
    base::storeWord(first + base::everyByte('0'), to);
    base::storeWord(last + base::everyByte('0'), to + base::wordLength);
    const auto digitsOf = [](std::uint64_t word) {
        return base::wordLength - static_cast<unsigned>(__builtin_clzll(word | 1)) / 8;
    };
    return static_cast<unsigned>(last != 0 ? base::wordLength + digitsOf(last) : digitsOf(first));
}

/// Writes sixteen digits as text, and says how many they are without the zeros at their end, of
/// which the first digit is none: 1 to 16.
///
/// Numbers are halved until each is a digit, all of a step at once; the multiplications are
/// divisions, exact for numbers so small:
///
///     31415926                    53589793                    of 64 bits
///     3141          5926          5358          9793          of 32
///     31     41     59     26     53     58     97     93     of 16
///     3  1   4  1   5  9   2  6   5  3   5  8   9  7   9  3   of 8
///
/// @param upper, lower  below 10^8, the first eight digits and the others
/// @param to            room for sixteen characters
inline unsigned writeSixteenDigits(std::uint32_t upper, std::uint32_t lower, char* to) {
#if defined(__SSE2__)
    const auto all16 = [](int value) { return _mm_set1_epi16(static_cast<short>(value)); };
    const __m128i eights = _mm_unpacklo_epi64(_mm_cvtsi32_si128(static_cast<int>(upper)),
                                              _mm_cvtsi32_si128(static_cast<int>(lower)));
    const __m128i perTenThousand = _mm_set1_epi64x(0xD1B71759); // 2^45 / 10^4
    const __m128i fourths = _mm_srli_epi64(_mm_mul_epu32(eights, perTenThousand), 45);
    const __m128i restOfEights =
        _mm_sub_epi64(eights, _mm_mul_epu32(fourths, _mm_set1_epi64x(10000)));
    const __m128i fours = _mm_or_si128(fourths, _mm_slli_epi64(restOfEights, 32));
    const __m128i seconds = _mm_srli_epi16(_mm_mulhi_epu16(fours, all16(5243)), 3); // 2^19 / 100
    const __m128i restOfFours = _mm_sub_epi16(fours, _mm_mullo_epi16(seconds, all16(100)));
    const __m128i twos = _mm_or_si128(seconds, _mm_slli_epi32(restOfFours, 16));
    const __m128i firsts = _mm_mulhi_epu16(twos, all16(6554)); // 2^16 / 10
    const __m128i restOfTwos = _mm_sub_epi16(twos, _mm_mullo_epi16(firsts, all16(10)));
    const __m128i digits = _mm_or_si128(firsts, _mm_slli_epi16(restOfTwos, 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_or_si128(digits, _mm_set1_epi8('0')));
    const int zeros = _mm_movemask_epi8(_mm_cmpeq_epi8(digits, _mm_setzero_si128()));
    const unsigned others = ~static_cast<unsigned>(zeros) & 0xFFFFU;
    return 32 - static_cast<unsigned>(__builtin_clz(others | 1));
#elif defined(__ARM_NEON) && defined(__aarch64__) && defined(__ORDER_LITTLE_ENDIAN__)
    const uint32x2_t eights = vset_lane_u32(lower, vdup_n_u32(upper), 1);
    constexpr std::uint32_t perTenThousand = 0xD1B71759; // 2^45 / 10^4
    const uint32x2_t fourths = vmovn_u64(vshrq_n_u64(vmull_n_u32(eights, perTenThousand), 45));
    const uint32x2x2_t halves = vzip_u32(fourths, vmls_n_u32(eights, fourths, 10000));
    const uint32x4_t fours = vcombine_u32(halves.val[0], halves.val[1]);
    const uint32x4_t seconds = vshrq_n_u32(vmulq_n_u32(fours, 5243), 19); // 2^19 / 100
    const uint32x4_t restOfFours = vmlsq_n_u32(fours, seconds, 100);
    const uint16x8_t twos = vreinterpretq_u16_u32(vorrq_u32(seconds, vshlq_n_u32(restOfFours, 16)));
    const uint16x8_t firsts = vshrq_n_u16(vmulq_n_u16(twos, 103), 10); // 2^10 / 10
    const uint16x8_t restOfTwos = vmlsq_n_u16(twos, firsts, 10);
    const uint8x16_t digits = vreinterpretq_u8_u16(vorrq_u16(firsts, vshlq_n_u16(restOfTwos, 8)));
    vst1q_u8(reinterpret_cast<std::uint8_t*>(to), vorrq_u8(digits, vdupq_n_u8('0')));
    // Four bits a digit.
    const uint8x8_t others = vshrn_n_u16(vreinterpretq_u16_u8(vtstq_u8(digits, digits)), 4);
    const std::uint64_t marks = vget_lane_u64(vreinterpret_u64_u8(others), 0);
    return 16 - static_cast<unsigned>(__builtin_clzll(marks | 1)) / 4;
#else
    return writeTwoWordsOfDigits(upper, lower, to);
#endif
}

} // namespace dxfeditor
