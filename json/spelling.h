#pragma once

#include <string_view>

#include "json/escape.h"
#include "json/text.h"
#include "json/utf8.h"

namespace json {

/// How the characters that JSON gives a meaning are written: in a message itself.
struct Plain {
  static constexpr std::string_view quote = "\"";
  static constexpr std::string_view backslash = "\\";
  static constexpr std::string_view slash = "/";
  static constexpr std::string_view newLine = "\n";
};

/// The same in JSON text which itself stands in a string of a message, and so is escaped
/// once more.
struct Quoted {
  static constexpr std::string_view quote = "\\\"";
  static constexpr std::string_view backslash = "\\\\";
  static constexpr std::string_view slash = "\\/";
  static constexpr std::string_view newLine = "\\n";
};

/// Appends `\u` and four hexadecimal digits.
template <typename Spelling>
void appendUnicodeEscape(Text& out, char32_t unit) {
  constexpr std::string_view digits = "0123456789abcdef";
  out.append(Spelling::backslash).append('u');
  for (const unsigned shift : {12U, 8U, 4U, 0U}) out.append(digits[unit >> shift & 0xFU]);
}

/// Appends one character of a string, escaped where the platform's writer escapes it.
template <typename Spelling>
void appendCharacter(Text& out, char32_t character) {
  switch (character) {
    case '"': out.append(Spelling::backslash).append(Spelling::quote); return;
    case '\\': out.append(Spelling::backslash).append(Spelling::backslash); return;
    case '/': out.append(Spelling::backslash).append(Spelling::slash); return;
    case '\b': out.append(Spelling::backslash).append('b'); return;
    case '\f': out.append(Spelling::backslash).append('f'); return;
    case '\n': out.append(Spelling::backslash).append('n'); return;
    case '\r': out.append(Spelling::backslash).append('r'); return;
    case '\t': out.append(Spelling::backslash).append('t'); return;
    default: break;
  }
  if (character < 0x20 || isSurrogate(character)) {
    appendUnicodeEscape<Spelling>(out, character);
  } else {
    appendUtf8(out, character);
  }
}

}  // namespace json
