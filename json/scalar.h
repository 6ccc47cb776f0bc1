#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "json/node.h"

namespace json {

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// The bytes that numbers and literals consist of.
inline constexpr auto scalarBytes = [] {
  std::array<bool, 256> table{};
  for (const char c : std::string_view("0123456789+-.Eaeflnrstu")) {
    table.at(static_cast<unsigned char>(c)) = true;
  }
  return table;
}();

/// The first byte in [from, end) that no number and no literal can contain, or `end`.
inline const char* skipScalar(const char* from, const char* end) {
  while (from != end && scalarBytes[static_cast<unsigned char>(*from)]) ++from;
  return from;
}

/// Whether the text is one whole JSON number.
constexpr bool isNumber(std::string_view text) {
  const auto skip = [&text](std::string_view oneOf) {
    const bool found = !text.empty() && oneOf.contains(text.front());
    if (found) text.remove_prefix(1);
    return found;
  };
  const auto skipDigits = [&text] {
    const auto end = std::ranges::find_if_not(text, isDigit);
    const bool found = end != text.begin();
    text = {end, text.end()};
    return found;
  };
  skip("-");
  if (!skip("0") && !skipDigits()) return false;
  if (skip(".") && !skipDigits()) return false;
  if (skip("eE")) {
    skip("+-");
    if (!skipDigits()) return false;
  }
  return text.empty();
}

/// What the text is: a number or one of the three literals; none if it is malformed.
constexpr std::optional<Kind> scalarKind(std::string_view text) {
  if (text == "true") return Kind::trueLiteral;
  if (text == "false") return Kind::falseLiteral;
  if (text == "null") return Kind::null;
  return isNumber(text) ? std::optional(Kind::number) : std::nullopt;
}

}  // namespace json
