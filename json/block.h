#pragma once

// Sixteen bytes looked at in one go. This is the only file with code for particular processors;
// the last branch is the same in plain C++.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__) && defined(__ARM_NEON)
#include <arm_neon.h>
#endif

namespace json {

inline constexpr std::ptrdiff_t blockSize = 16;

// What every branch has:
//   Block                   that many bytes
//   loadBlock, storeBlock   at any address
//   equal, controls, unprintable,
//   either, differing       Blocks in which a byte is marked if it is what the name says
//   unmarkedBefore          how many bytes come before the first that is marked; all if none is
//   marksIn64               the marks of the 64 bytes at an address, the first one's lowest

#if defined(__SSE2__)

using Block = __m128i;

inline Block loadBlock(const char* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
inline void storeBlock(char* to, Block block) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), block);
}

inline Block equal(Block bytes, char c) {
  return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c));
}
/// Control characters.
inline Block controls(Block bytes) {
  return _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(0x1F)), bytes);
}
/// Control characters and what isn't ASCII: as signed numbers, both are below a blank.
inline Block unprintable(Block bytes) {
  return _mm_cmplt_epi8(bytes, _mm_set1_epi8(' '));
}
inline Block either(Block a, Block b) {
  return _mm_or_si128(a, b);
}
inline Block differing(Block a, Block b) {
  return _mm_xor_si128(_mm_cmpeq_epi8(a, b), _mm_set1_epi8(-1));
}

inline std::uint32_t marks(Block marked) {
  return static_cast<std::uint32_t>(_mm_movemask_epi8(marked));
}
inline std::ptrdiff_t unmarkedBefore(Block marked) {
  return std::countr_zero(marks(marked) | 1U << static_cast<unsigned>(blockSize));
}
template <typename Mark>
std::uint64_t marksIn64(const char* from, Mark mark) {
  std::uint64_t all = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    all |= std::uint64_t{marks(mark(loadBlock(from + 16 * i)))} << 16 * i;
  }
  return all;
}

#elif defined(__aarch64__) && defined(__ARM_NEON)

using Block = uint8x16_t;

inline Block loadBlock(const char* from) {
  return vld1q_u8(reinterpret_cast<const std::uint8_t*>(from));
}
inline void storeBlock(char* to, Block block) {
  vst1q_u8(reinterpret_cast<std::uint8_t*>(to), block);
}

inline Block equal(Block bytes, char c) {
  return vceqq_u8(bytes, vdupq_n_u8(static_cast<std::uint8_t>(c)));
}
/// Control characters.
inline Block controls(Block bytes) {
  return vcltq_u8(bytes, vdupq_n_u8(' '));
}
/// Control characters and what isn't ASCII.
inline Block unprintable(Block bytes) {
  return vcltq_s8(vreinterpretq_s8_u8(bytes), vdupq_n_s8(' '));
}
inline Block either(Block a, Block b) {
  return vorrq_u8(a, b);
}
inline Block differing(Block a, Block b) {
  return vmvnq_u8(vceqq_u8(a, b));
}

inline std::ptrdiff_t unmarkedBefore(Block marked) {
  // Four bits a byte: the narrowing shift is this processor's way to make a mask.
  const uint8x8_t narrowed = vshrn_n_u16(vreinterpretq_u16_u8(marked), 4);
  const std::uint64_t mask = vget_lane_u64(vreinterpret_u64_u8(narrowed), 0);
  return mask == 0 ? blockSize : std::countr_zero(mask) / 4;
}
template <typename Mark>
std::uint64_t marksIn64(const char* from, Mark mark) {
  constexpr std::array<std::uint8_t, 16> bits{1, 2, 4, 8, 16, 32, 64, 128,
                                              1, 2, 4, 8, 16, 32, 64, 128};
  const Block place = vld1q_u8(bits.data());
  const auto block = [&](std::size_t i) { return vandq_u8(mark(loadBlock(from + 16 * i)), place); };
  // Adding neighbours three times gathers each eight bytes' bits in one.
  const Block low = vpaddq_u8(block(0), block(1));
  const Block high = vpaddq_u8(block(2), block(3));
  const Block all = vpaddq_u8(low, high);
  return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(all, all)), 0);
}

#else

using Block = std::array<unsigned char, blockSize>;

inline Block loadBlock(const char* from) {
  Block block;
  std::memcpy(block.data(), from, block.size());
  return block;
}
inline void storeBlock(char* to, Block block) {
  std::memcpy(to, block.data(), block.size());
}

/// Marks each byte for which `is` holds.
template <typename Is>
Block marked(Block bytes, Is is) {
  std::ranges::transform(bytes, bytes.begin(), is);
  return bytes;
}
inline Block equal(Block bytes, char c) {
  return marked(bytes, [c](unsigned char byte) { return byte == static_cast<unsigned char>(c); });
}
/// Control characters.
inline Block controls(Block bytes) {
  return marked(bytes, [](unsigned char byte) { return byte < 0x20; });
}
/// Control characters and what isn't ASCII.
inline Block unprintable(Block bytes) {
  return marked(bytes, [](unsigned char byte) { return byte < 0x20 || byte >= 0x80; });
}
inline Block either(Block a, Block b) {
  std::ranges::transform(a, b, a.begin(), std::logical_or<>());
  return a;
}
inline Block differing(Block a, Block b) {
  std::ranges::transform(a, b, a.begin(), std::not_equal_to<>());
  return a;
}

inline std::ptrdiff_t unmarkedBefore(Block marks) {
  return std::ranges::find_if(marks, [](unsigned char mark) { return mark != 0; }) - marks.begin();
}
template <typename Mark>
std::uint64_t marksIn64(const char* from, Mark mark) {
  std::uint64_t all = 0;
  for (std::size_t i = 0; i < 64; i += blockSize) {
    const Block marks = mark(loadBlock(from + i));
    for (std::size_t k = 0; k < marks.size(); ++k) all |= std::uint64_t{marks[k]} << (i + k);
  }
  return all;
}

#endif

}  // namespace json
