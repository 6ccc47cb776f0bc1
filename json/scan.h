#pragma once

// Finds the next byte of a string that needs a second look, sixteen bytes at a time where
// the processor can. Most of the relay's time on big messages is spent here or in memcpy.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__) && defined(__ARM_NEON)
#include <arm_neon.h>
#endif

namespace json {

/// What a scan looks for.
enum class StopAt : std::uint8_t {
  unusual,       ///< in a string being read: `"`, `\`, control characters, non-ASCII
  respelled,     ///< in a string that is well-formed: `\` and `/`, which may be spelled anew
  mustBeEscaped  ///< in text to be quoted: `"`, `\`, `/`, control characters, and 0xED, which
                 ///< begins the three bytes of an unpaired surrogate
};

template <StopAt stop>
constexpr bool stopsAt(char c) {
  const auto byte = static_cast<unsigned char>(c);
  switch (stop) {
    case StopAt::unusual: return c == '"' || c == '\\' || byte < 0x20 || byte >= 0x80;
    case StopAt::respelled: return c == '\\' || c == '/';
    case StopAt::mustBeEscaped: break;
  }
  return c == '"' || c == '\\' || c == '/' || byte < 0x20 || byte == 0xED;
}

#if defined(__SSE2__)

inline constexpr std::ptrdiff_t scanBlock = 16;
using Block = __m128i;

inline Block loadBlock(const char* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
inline void storeBlock(char* to, Block block) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), block);
}

/// A bit for each byte of the block, the first byte's lowest: set where to stop.
template <StopAt stop>
std::uint32_t stopMask(Block bytes) {
  const auto equal = [&](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
  Block found = equal('\\');
  if constexpr (stop != StopAt::unusual) found = _mm_or_si128(found, equal('/'));
  if constexpr (stop != StopAt::respelled) found = _mm_or_si128(found, equal('"'));
  if constexpr (stop == StopAt::unusual) {
    // As signed numbers, both control characters and non-ASCII bytes are below a blank.
    found = _mm_or_si128(found, _mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')));
  }
  if constexpr (stop == StopAt::mustBeEscaped) {
    const Block atMostLastControl = _mm_min_epu8(bytes, _mm_set1_epi8(0x1F));
    found = _mm_or_si128(found, _mm_cmpeq_epi8(atMostLastControl, bytes));
    found = _mm_or_si128(found, equal('\xED'));
  }
  return static_cast<std::uint32_t>(_mm_movemask_epi8(found));
}

/// How many bytes of the block come before the first to stop at: all 16 if there is none.
template <StopAt stop>
std::ptrdiff_t cleanBytes(Block bytes) {
  return std::countr_zero(stopMask<stop>(bytes) | 1U << static_cast<unsigned>(scanBlock));
}

/// A bit for each of the 64 bytes at `from`, the first byte's lowest: set where to stop.
template <StopAt stop>
std::uint64_t stopsIn64(const char* from) {
  std::uint64_t stops = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    stops |= std::uint64_t{stopMask<stop>(loadBlock(from + 16 * i))} << 16 * i;
  }
  return stops;
}

#elif defined(__aarch64__) && defined(__ARM_NEON)

inline constexpr std::ptrdiff_t scanBlock = 16;
using Block = uint8x16_t;

inline Block loadBlock(const char* from) {
  return vld1q_u8(reinterpret_cast<const std::uint8_t*>(from));
}
inline void storeBlock(char* to, Block block) {
  vst1q_u8(reinterpret_cast<std::uint8_t*>(to), block);
}

/// All bits of each byte of the block to stop at.
template <StopAt stop>
Block stopBytes(Block bytes) {
  const auto equal = [&](std::uint8_t c) { return vceqq_u8(bytes, vdupq_n_u8(c)); };
  Block found = equal('\\');
  if constexpr (stop != StopAt::unusual) found = vorrq_u8(found, equal('/'));
  if constexpr (stop != StopAt::respelled) {
    found = vorrq_u8(found, equal('"'));
    found = vorrq_u8(found, vcltq_u8(bytes, vdupq_n_u8(' ')));
  }
  if constexpr (stop == StopAt::unusual) {
    found = vorrq_u8(found, vcgeq_u8(bytes, vdupq_n_u8(0x80)));
  }
  if constexpr (stop == StopAt::mustBeEscaped) found = vorrq_u8(found, equal(0xED));
  return found;
}

/// How many bytes of the block come before the first to stop at: all 16 if there is none.
template <StopAt stop>
std::ptrdiff_t cleanBytes(Block bytes) {
  // Four bits a byte: the narrowing shift is this processor's way to make a mask.
  const uint8x8_t narrowed = vshrn_n_u16(vreinterpretq_u16_u8(stopBytes<stop>(bytes)), 4);
  const std::uint64_t mask = vget_lane_u64(vreinterpret_u64_u8(narrowed), 0);
  return mask == 0 ? scanBlock : std::countr_zero(mask) / 4;
}

/// A bit for each of the 64 bytes at `from`, the first byte's lowest: set where to stop.
template <StopAt stop>
std::uint64_t stopsIn64(const char* from) {
  constexpr std::array<std::uint8_t, 16> bits{1, 2, 4, 8, 16, 32, 64, 128,
                                              1, 2, 4, 8, 16, 32, 64, 128};
  const Block place = vld1q_u8(bits.data());
  const auto block = [&](std::size_t i) {
    return vandq_u8(stopBytes<stop>(loadBlock(from + 16 * i)), place);
  };
  // Adding neighbours three times gathers each eight bytes' bits in one.
  const Block low = vpaddq_u8(block(0), block(1));
  const Block high = vpaddq_u8(block(2), block(3));
  const Block all = vpaddq_u8(low, high);
  return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(all, all)), 0);
}

#else

inline constexpr std::ptrdiff_t scanBlock = 1;
using Block = char;

inline Block loadBlock(const char* from) {
  return *from;
}
inline void storeBlock(char* to, Block block) {
  *to = block;
}

template <StopAt stop>
std::ptrdiff_t cleanBytes(Block byte) {
  return stopsAt<stop>(byte) ? 0 : 1;
}

template <StopAt stop>
std::uint64_t stopsIn64(const char* from) {
  std::uint64_t stops = 0;
  for (unsigned i = 0; i < 64; ++i) stops |= std::uint64_t{stopsAt<stop>(from[i])} << i;
  return stops;
}

#endif

/// The first byte in [from, end) to stop at, or `end`.
template <StopAt stop>
const char* scan(const char* from, const char* end) {
  while (end - from >= scanBlock) {
    const std::ptrdiff_t clean = cleanBytes<stop>(loadBlock(from));
    from += clean;
    if (clean < scanBlock) return from;
  }
  while (from != end && !stopsAt<stop>(*from)) ++from;
  return from;
}

/// Where a scan that copies has come to, in its source and in its copy.
struct Copied {
  const char* from;
  char* to;
};

/// Copies bytes until one to stop at, or until `end`. It may read on to `readable`, and may
/// write a block more than it copies.
template <StopAt stop>
Copied copyScan(const char* from, const char* end, const char* readable, char* to) {
  while (readable - from >= scanBlock) {
    const Block block = loadBlock(from);
    storeBlock(to, block);
    const std::ptrdiff_t clean = std::min(cleanBytes<stop>(block), end - from);
    from += clean;
    to += clean;
    if (clean < scanBlock) return {from, to};
  }
  while (from != end && !stopsAt<stop>(*from)) *to++ = *from++;
  return {from, to};
}

/// Copies `size` bytes. It may read on to `readable`, and may write a block more. For what is
/// mostly short, this beats a call of memcpy.
inline char* copyShort(const char* from, std::size_t size, const char* readable, char* to) {
  const auto blocks = static_cast<std::ptrdiff_t>((size + scanBlock - 1) / scanBlock);
  if (readable - from < blocks * scanBlock) {
    std::memcpy(to, from, size);
  } else {
    for (std::ptrdiff_t i = 0; i < blocks; ++i) {
      storeBlock(to + i * scanBlock, loadBlock(from + i * scanBlock));
    }
  }
  return to + size;
}

}  // namespace json
