#pragma once

// Finds the bytes of a string that need more than copying. Big messages spend most of their time
// here and in memcpy.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "json/simd.h"

namespace json {

/// How many bytes one mask covers.
inline constexpr std::ptrdiff_t maskWidth = 64;

/// The bytes that reading a string checks: `"`, `\`, control characters, everything outside ASCII.
inline Block needsCheck(Block bytes) {
  return equal(bytes, '"') | equal(bytes, '\\') | isControlOrNonAscii(bytes);
}

inline Block isSlash(Block bytes) {
  return equal(bytes, '/');
}
inline Block isBackslash(Block bytes) {
  return equal(bytes, '\\');
}
inline Block isAnySlash(Block bytes) {
  return isSlash(bytes) | isBackslash(bytes);
}
inline Block isLetterU(Block bytes) {
  return equal(bytes, 'u');
}

/// The mask of the 64 bytes at `from`: a bit for each, the first byte's lowest, set where `matches`
/// is true.
template <auto matches>
std::uint64_t mask(const char* from) {
  const auto block = [from](std::ptrdiff_t i) { return matches(load(from + i * blockSize)); };
  return maskOf(block(0), block(1), block(2), block(3));
}

/// Calls `find(from, size)` with a copy of the bytes, padded with zeroes to 64.
template <auto find>
[[gnu::noinline, gnu::cold]] std::uint64_t findInCopy(const char* from, std::ptrdiff_t size) {
  std::array<char, maskWidth> copy{};
  std::memcpy(copy.data(), from, static_cast<std::size_t>(size));
  return find(copy.data(), size);
}

/// Returns the bits of `find(from, size)` for these bytes, 1 to 64. `find` may read 64 bytes; this
/// function reads none at or after `readableEnd`, which is not before `from + size`.
template <auto find>
std::uint64_t findIn(const char* from, std::ptrdiff_t size, const char* readableEnd) {
  const bool allReadable = readableEnd - from >= maskWidth;
  const std::uint64_t found = allReadable ? find(from, size) : findInCopy<find>(from, size);
  return found & ~std::uint64_t{0} >> (maskWidth - size);
}

}  // namespace json
