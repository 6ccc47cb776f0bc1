#pragma once

#include <utf8.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "json/scan.h"
#include "json/unescape.h"

namespace json {

/// The result of reading a part of a message.
enum class Progress : std::uint8_t {
  done,       ///< the part was read to its end
  cutShort,   ///< well-formed, but the text ends before the part does
  malformed,  ///< no further text can make it well-formed
};

/// Moves `at`, which points to a backslash, past the escape.
inline Progress skipEscape(const char*& at, const char* end) {
  constexpr std::ptrdiff_t unicodeLength = 6;  // \uXXXX
  const std::ptrdiff_t present = std::min(end - at, unicodeLength);
  if (present < 2) return Progress::cutShort;
  if (shortEscape(at[1]) != 0) {
    at += 2;
    return Progress::done;
  }
  if (at[1] != 'u') return Progress::malformed;
  if (std::any_of(at + 2, at + present, [](char c) { return hexValue(c) < 0; })) {
    return Progress::malformed;
  }
  if (present < unicodeLength) return Progress::cutShort;
  at += unicodeLength;
  return Progress::done;
}

/// Moves `at`, which points to a control character or a byte outside ASCII, past a well-formed
/// UTF-8 sequence. Control characters are malformed.
inline Progress skipNonAscii(const char*& at, const char* end) {
  const int length = std::countl_one(static_cast<unsigned char>(*at));
  if (length < 2 || length > 4) return Progress::malformed;
  if (end - at < length) return Progress::cutShort;
  if (!utf8::is_valid(at, at + length)) return Progress::malformed;
  at += length;
  return Progress::done;
}

/// Moves `at` to the closing quote if it is in the next two blocks and all before it is plain
/// ASCII, as in most strings. Otherwise it moves only over plain ASCII.
inline bool skipShort(const char*& at, const char* end) {
  for (int blocks = 0; blocks < 2 && end - at >= blockSize; ++blocks) {
    const std::uint64_t stops = maskOf(needsCheck(load(at)));
    if (stops == 0) {
      at += blockSize;
      continue;
    }
    at += std::countr_zero(stops);
    return *at == '"';
  }
  return false;
}

inline std::uint64_t findToCheck(const char* from, std::ptrdiff_t /*size*/) {
  return mask<needsCheck>(from);
}

/// Moves `at` to the quote that closes a string. When the text is cut short, call it again with
/// `at` where it was left. Sets `hasEscapes` when it passes an escape.
inline Progress skipToQuote(const char*& at, const char* end, bool& hasEscapes) {
  if (skipShort(at, end)) return Progress::done;
  while (at != end) {
    const char* const begin = at;
    const std::ptrdiff_t size = std::min(maskWidth, end - begin);
    // Walking one bit mask avoids mispredicted branches.
    std::uint64_t stops = findIn<findToCheck>(begin, size, end);
    while (stops != 0) {
      at = begin + std::countr_zero(stops);
      if (*at == '"') return Progress::done;
      const bool isEscape = *at == '\\';
      hasEscapes |= isEscape;
      const Progress progress = isEscape ? skipEscape(at, end) : skipNonAscii(at, end);
      if (progress != Progress::done) return progress;
      const std::ptrdiff_t done = at - begin;
      stops = done < maskWidth ? stops & ~std::uint64_t{0} << done : 0;
    }
    at = std::max(at, begin + size);
  }
  return Progress::cutShort;
}

}  // namespace json
