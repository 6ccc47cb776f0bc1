#pragma once

#include <cstddef>

namespace json {

/// What stands at the beginning of some bytes, read as UTF-8.
struct Utf8Sequence {
  enum class State { wellFormed, illFormed, cutShort };
  State state;
  std::ptrdiff_t length;  ///< bytes of a well-formed sequence, 2 to 4; otherwise 0
};

/// Judges the sequence that the non-ASCII byte at `from` begins, in [from, end). Overlong
/// forms, surrogates and what lies above U+10FFFF are ill-formed. A sequence is cut short
/// when `end` comes before its last byte and what is there could still become well-formed.
Utf8Sequence utf8Sequence(const char* from, const char* end);

/// The code point of the sequence at `from`, which is well-formed, or is the three bytes of
/// a surrogate as appendUtf8 writes them.
char32_t decodeUtf8(const char* from, std::ptrdiff_t length);

/// Writes a code point as UTF-8, at most four bytes, and returns the place behind them. A
/// surrogate, which has no UTF-8 form, becomes the three bytes that the general pattern gives;
/// they never leave this process as they are.
char* writeUtf8(char* to, char32_t codePoint);

}  // namespace json
