#include "json/unescape.h"

namespace json {
namespace {

constexpr std::ptrdiff_t unicodeEscapeLength = 6;  // \uXXXX

char32_t readUnit(const char* digits) {
  char32_t unit = 0;
  for (int i = 0; i < 4; ++i) unit = unit << 4U | static_cast<char32_t>(hexValue(digits[i]));
  return unit;
}

bool unicodeEscapeAt(const char* from, const char* end) {
  return end - from >= unicodeEscapeLength && from[0] == '\\' && from[1] == 'u';
}

}  // namespace

Escape readEscape(const char* from, const char* end) {
  if (from[1] != 'u') return {static_cast<char32_t>(shortEscape(from[1])), 2};
  const char32_t unit = readUnit(from + 2);
  const char* const second = from + unicodeEscapeLength;
  if (isHighSurrogate(unit) && unicodeEscapeAt(second, end)) {
    if (const char32_t low = readUnit(second + 2); isLowSurrogate(low)) {
      return {0x10000 + ((unit - 0xD800) << 10U) + (low - 0xDC00), 2 * unicodeEscapeLength};
    }
  }
  return {unit, unicodeEscapeLength};
}

}  // namespace json
