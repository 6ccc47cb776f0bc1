#pragma once

// Sixteen bytes compared at once. The compiler's vector types do that on every processor; only
// turning a comparison into a bit mask needs an instruction of the processor's own.

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace json {

using Block [[gnu::vector_size(16)]] = unsigned char;
inline constexpr std::ptrdiff_t blockSize = sizeof(Block);

/// Reads a block at any address.
inline Block load(const char* from) {
  Block block;
  std::memcpy(&block, from, sizeof block);
  return block;
}

/// Writes a block at any address.
inline void store(char* to, Block block) {
  std::memcpy(to, &block, sizeof block);
}

// Comparisons: a byte of the result is 0xFF if the comparison is true for that byte, otherwise 0.

inline Block equal(Block bytes, char c) {
  return reinterpret_cast<Block>(bytes == static_cast<unsigned char>(c));
}

/// Control characters and everything outside ASCII: as signed numbers, both are below a space.
inline Block isControlOrNonAscii(Block bytes) {
  using SignedBlock [[gnu::vector_size(16)]] = signed char;
  return reinterpret_cast<Block>(reinterpret_cast<SignedBlock>(bytes) < ' ');
}

#if defined(__aarch64__)

/// The mask of 64 compared bytes: a bit for each, the first byte's lowest.
inline std::uint64_t maskOf(Block a, Block b, Block c, Block d) {
  constexpr Block bits{1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
  // Adding neighbours three times collects the bits of eight bytes in one byte.
  const uint8x16_t low = vpaddq_u8(a & bits, b & bits);
  const uint8x16_t high = vpaddq_u8(c & bits, d & bits);
  const uint8x16_t all = vpaddq_u8(low, high);
  return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(all, all)), 0);
}

/// The mask of one compared block, in the lowest 16 bits.
inline std::uint64_t maskOf(Block block) {
  return maskOf(block, Block{}, Block{}, Block{});
}

#else

/// The mask of one compared block: a bit for each byte, the first byte's lowest.
inline std::uint64_t maskOf(Block block) {
#if defined(__SSE2__)
  return static_cast<std::uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(block)));
#else
  std::uint64_t mask = 0;
  for (std::size_t i = 0; i < sizeof block; ++i) mask |= (block[i] & std::uint64_t{1}) << i;
  return mask;
#endif
}

/// The mask of 64 compared bytes.
inline std::uint64_t maskOf(Block a, Block b, Block c, Block d) {
  return maskOf(a) | maskOf(b) << 16U | maskOf(c) << 32U | maskOf(d) << 48U;
}

#endif

}  // namespace json
