#pragma once

// Finds the next byte of a string that needs a second look. Most of the relay's time on big
// messages is spent here or in memcpy.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "json/block.h"

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

/// Marks the bytes to stop at.
template <StopAt stop>
Block stopsOf(Block bytes) {
  if constexpr (stop == StopAt::respelled) return either(equal(bytes, '\\'), equal(bytes, '/'));
  const Block quoteOrBackslash = either(equal(bytes, '"'), equal(bytes, '\\'));
  if constexpr (stop == StopAt::unusual) return either(quoteOrBackslash, unprintable(bytes));
  const Block slashOrSurrogate = either(equal(bytes, '/'), equal(bytes, '\xED'));
  return either(either(quoteOrBackslash, slashOrSurrogate), controls(bytes));
}

/// How many bytes of the block come before the first to stop at: all if there is none.
template <StopAt stop>
std::ptrdiff_t cleanBytes(Block bytes) {
  return unmarkedBefore(stopsOf<stop>(bytes));
}

/// A bit for each of the 64 bytes at `from`, the first byte's lowest: set where to stop.
template <StopAt stop>
std::uint64_t stopsIn64(const char* from) {
  return marksIn64(from, stopsOf<stop>);
}

/// A bit for each of the 64 bytes at `from`, the first byte's lowest: set where it is `c`.
template <char c>
std::uint64_t equalIn64(const char* from) {
  return marksIn64(from, [](Block bytes) { return equal(bytes, c); });
}

/// Of the backslashes among 64 bytes, the first of which is not escaped itself, those that
/// begin an escape: in each run of them every other one.
constexpr std::uint64_t escapesAmong(std::uint64_t backslashes) {
  constexpr std::uint64_t odd = 0xAAAA'AAAA'AAAA'AAAA;
  // Subtracting a run from what follows it carries through the run; where it comes out tells
  // whether the run began and ended at places of the same parity.
  const std::uint64_t behind = backslashes << 1U;
  const std::uint64_t escapedOrOdd = ((behind | odd) - backslashes) ^ odd;
  return escapedOrOdd & backslashes;
}

/// How many bytes of the two blocks at `from` come before the first to stop at.
template <StopAt stop>
std::ptrdiff_t cleanBytesIn2(const char* from) {
  const std::ptrdiff_t clean = cleanBytes<stop>(loadBlock(from));
  return clean < blockSize ? clean : blockSize + cleanBytes<stop>(loadBlock(from + blockSize));
}

/// The first byte in [from, end) to stop at, or `end`.
template <StopAt stop>
const char* scan(const char* from, const char* end) {
  while (end - from >= blockSize) {
    const std::ptrdiff_t clean = cleanBytes<stop>(loadBlock(from));
    from += clean;
    if (clean < blockSize) return from;
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
  while (readable - from >= blockSize) {
    const Block block = loadBlock(from);
    storeBlock(to, block);
    const std::ptrdiff_t clean = std::min(cleanBytes<stop>(block), end - from);
    from += clean;
    to += clean;
    if (clean < blockSize) return {from, to};
  }
  while (from != end && !stopsAt<stop>(*from)) *to++ = *from++;
  return {from, to};
}

/// Copies `size` bytes. It may read on to `readable`, and may write a block more. For what is
/// mostly short, this beats a call of memcpy.
inline char* copyShort(const char* from, std::size_t size, const char* readable, char* to) {
  const auto blocks = static_cast<std::ptrdiff_t>((size + blockSize - 1) / blockSize);
  if (readable - from < blocks * blockSize) {
    std::memcpy(to, from, size);
  } else {
    for (std::ptrdiff_t i = 0; i < blocks; ++i) {
      storeBlock(to + i * blockSize, loadBlock(from + i * blockSize));
    }
  }
  return to + size;
}

}  // namespace json
