#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "json/escape.h"
#include "json/scan.h"
#include "json/unescape.h"

namespace json {

/// Where a copy continues: the next byte to read and the place to write to.
struct Copied {
  const char* from;
  char* to;
};

/// Copies bytes and returns the end of the copy.
inline char* put(char* to, std::string_view bytes) {
  std::memcpy(to, bytes.data(), bytes.size());
  return to + bytes.size();
}

/// Writes the slash or the escape at `from` in this writer's spelling.
template <Escaping escaping>
Copied writeEscaped(const char* from, const char* end, char* to) {
  if (*from == '/') return {from + 1, writeAscii<escaping>(to, '/')};
  if (from[1] != 'u') return {from + 2, writeAscii<escaping>(to, shortEscape(from[1]))};
  const Escape escape = readEscape(from, end);
  return {from + escape.length, writeCharacter<escaping>(to, escape.codePoint)};
}

/// Whether an odd number of backslashes precedes `at`. The byte at `begin` is not escaped.
inline bool isEscaped(const char* begin, const char* at) {
  const char* run = at;
  while (run != begin && run[-1] == '\\') --run;
  return (at - run) % 2 != 0;
}

/// The mask of the bytes that copyEscaped() may have to spell differently.
template <Escaping escaping>
std::uint64_t findToEscape(const char* from, std::ptrdiff_t size) {
  if constexpr (escaping == Escaping::twice) return mask<isAnySlash>(from);
  // Short escapes are copied as they are. Any escape that crosses the end is written separately.
  const bool crossesEnd = from[size - 1] == '\\' && !isEscaped(from, from + size - 1);
  const std::uint64_t unicode = mask<isBackslash>(from) & mask<isLetterU>(from) >> 1U;
  return mask<isSlash>(from) | unicode | std::uint64_t{crossesEnd} << (size - 1);
}

/// Copies at most 64 bytes from inside a well-formed string that ends at `end`, or a little
/// further if an escape crosses their end. All escapes in the copy have this writer's spelling.
/// Reads no byte at or after `readableEnd`. A byte can become four, and longestCharacter bytes more
/// may be overwritten.
template <Escaping escaping>
Copied copyEscaped(const char* from, std::ptrdiff_t size, const char* end, const char* readableEnd,
                   char* to) {
  const char* const begin = from;
  std::uint64_t stops = findIn<findToEscape<escaping>>(begin, size, readableEnd);
  // Walking one bit mask avoids mispredicted branches.
  while (stops != 0) {
    const char* const at = begin + std::countr_zero(stops);
    stops &= stops - 1;
    if constexpr (escaping == Escaping::once) {
      if (isEscaped(from, at)) continue;
    }
    to = put(to, {from, at});
    const Copied written = writeEscaped<escaping>(at, end, to);
    from = written.from;
    to = written.to;
    if (from - begin >= size) return {from, to};
    stops &= ~std::uint64_t{0} << (from - begin);
  }
  return {begin + size, put(to, {from, begin + size})};
}

}  // namespace json
