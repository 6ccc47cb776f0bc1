#pragma once

// Finds the next byte of a string that needs a second look, sixteen bytes at a time where
// the processor can. All of the relay's time on big messages is spent here or in memcpy.

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__) && defined(__ARM_NEON)
#include <arm_neon.h>
#endif

namespace json {

/// What a scan looks for.
enum class StopAt : std::uint8_t {
  anythingUnusual,   ///< in a string being read: `"`, `\`, `/`, control characters, non-ASCII
  backslashOrSlash,  ///< in a string known to be well-formed: what the writer may spell anew
  whatMustBeEscaped  ///< in text to be quoted: `"`, `\`, `/`, control characters, 0xED, which
                     ///< begins the three bytes of an unpaired surrogate
};

template <StopAt stop>
constexpr bool stopsAt(char c) {
  if (c == '\\' || c == '/') return true;
  if constexpr (stop == StopAt::backslashOrSlash) {
    return false;
  } else {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || byte < 0x20) return true;
    return stop == StopAt::anythingUnusual ? byte >= 0x80 : byte == 0xED;
  }
}

/// The first byte in [from, end) to stop at, or `end`. One byte at a time: for the last few
/// bytes, for processors that the code below does not know, and to judge it in the tests.
template <StopAt stop>
const char* scanPlainly(const char* from, const char* end) {
  while (from != end && !stopsAt<stop>(*from)) ++from;
  return from;
}

#if defined(__SSE2__)

inline constexpr std::ptrdiff_t scanBlock = 16;

/// How many bytes at `block` come before the first to stop at: 16 if there is none.
template <StopAt stop>
std::ptrdiff_t cleanBytes(const char* block) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
  __m128i found = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')),
                               _mm_cmpeq_epi8(bytes, _mm_set1_epi8('/')));
  if constexpr (stop != StopAt::backslashOrSlash) {
    found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')));
  }
  if constexpr (stop == StopAt::anythingUnusual) {
    // As signed numbers, both control characters and non-ASCII bytes are below a blank.
    found = _mm_or_si128(found, _mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')));
  }
  if constexpr (stop == StopAt::whatMustBeEscaped) {
    const __m128i lastControl = _mm_set1_epi8(0x1F);
    found = _mm_or_si128(found, _mm_cmpeq_epi8(_mm_min_epu8(bytes, lastControl), bytes));
    found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\xED')));
  }
  const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(found));
  return std::countr_zero(mask | 0x10000U);
}

#elif defined(__aarch64__) && defined(__ARM_NEON)

inline constexpr std::ptrdiff_t scanBlock = 16;

/// How many bytes at `block` come before the first to stop at: 16 if there is none.
template <StopAt stop>
std::ptrdiff_t cleanBytes(const char* block) {
  const uint8x16_t bytes = vld1q_u8(reinterpret_cast<const std::uint8_t*>(block));
  uint8x16_t found = vorrq_u8(vceqq_u8(bytes, vdupq_n_u8('\\')), vceqq_u8(bytes, vdupq_n_u8('/')));
  if constexpr (stop != StopAt::backslashOrSlash) {
    found = vorrq_u8(found, vceqq_u8(bytes, vdupq_n_u8('"')));
    found = vorrq_u8(found, vcltq_u8(bytes, vdupq_n_u8(' ')));
  }
  if constexpr (stop == StopAt::anythingUnusual) {
    found = vorrq_u8(found, vcgeq_u8(bytes, vdupq_n_u8(0x80)));
  }
  if constexpr (stop == StopAt::whatMustBeEscaped) {
    found = vorrq_u8(found, vceqq_u8(bytes, vdupq_n_u8(0xED)));
  }
  // Four bits a byte: the narrowing shift is this processor's way to make a mask.
  const uint8x8_t narrowed = vshrn_n_u16(vreinterpretq_u16_u8(found), 4);
  const std::uint64_t mask = vget_lane_u64(vreinterpret_u64_u8(narrowed), 0);
  return mask == 0 ? scanBlock : std::countr_zero(mask) / 4;
}

#else

inline constexpr std::ptrdiff_t scanBlock = 1;

template <StopAt stop>
std::ptrdiff_t cleanBytes(const char* block) {
  return stopsAt<stop>(*block) ? 0 : 1;
}

#endif

/// The first byte in [from, end) to stop at, or `end`.
template <StopAt stop>
const char* scan(const char* from, const char* end) {
  while (end - from >= scanBlock) {
    const std::ptrdiff_t clean = cleanBytes<stop>(from);
    from += clean;
    if (clean < scanBlock) return from;
  }
  return scanPlainly<stop>(from, end);
}

}  // namespace json
