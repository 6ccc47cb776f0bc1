#include "json/utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace json {
namespace {

constexpr unsigned byteAt(const char* at) {
  return static_cast<unsigned char>(*at);
}

/// What a lead byte demands of its sequence: its length, and the range of its second byte,
/// which is what keeps overlong forms, surrogates and too large code points out.
struct Lead {
  std::ptrdiff_t length = 0;  ///< 0 where the byte can't begin a sequence
  unsigned secondFrom = 0x80;
  unsigned secondTo = 0xBF;
};

constexpr Lead leadOf(unsigned lead) {
  if (lead < 0xC2) return {};
  if (lead < 0xE0) return {.length = 2};
  if (lead == 0xE0) return {.length = 3, .secondFrom = 0xA0};
  if (lead == 0xED) return {.length = 3, .secondTo = 0x9F};
  if (lead < 0xF0) return {.length = 3};
  if (lead == 0xF0) return {.length = 4, .secondFrom = 0x90};
  if (lead < 0xF4) return {.length = 4};
  if (lead == 0xF4) return {.length = 4, .secondTo = 0x8F};
  return {};
}

}  // namespace

Utf8Sequence utf8Sequence(const char* from, const char* end) {
  using enum Utf8Sequence::State;
  const Lead lead = leadOf(byteAt(from));
  if (lead.length == 0) return {illFormed, 0};
  const std::ptrdiff_t present = std::min(lead.length, end - from);
  if (present > 1 && (byteAt(from + 1) < lead.secondFrom || byteAt(from + 1) > lead.secondTo)) {
    return {illFormed, 0};
  }
  for (std::ptrdiff_t i = 2; i < present; ++i) {
    if ((byteAt(from + i) & 0xC0U) != 0x80U) return {illFormed, 0};
  }
  if (present < lead.length) return {cutShort, 0};
  return {wellFormed, lead.length};
}

char32_t decodeUtf8(const char* from, std::ptrdiff_t length) {
  constexpr std::array<unsigned, 5> leadBits{0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t codePoint = byteAt(from) & leadBits.at(static_cast<std::size_t>(length));
  for (std::ptrdiff_t i = 1; i < length; ++i) {
    codePoint = codePoint << 6U | (byteAt(from + i) & 0x3FU);
  }
  return codePoint;
}

char* writeUtf8(char* to, char32_t codePoint) {
  const auto put = [&](char32_t byte) { *to++ = static_cast<char>(byte); };
  const auto trail = [&](unsigned shift) { put(0x80U | (codePoint >> shift & 0x3FU)); };
  if (codePoint < 0x80) {
    put(codePoint);
  } else if (codePoint < 0x800) {
    put(0xC0U | codePoint >> 6U);
    trail(0);
  } else if (codePoint < 0x10000) {
    put(0xE0U | codePoint >> 12U);
    trail(6);
    trail(0);
  } else {
    put(0xF0U | codePoint >> 18U);
    trail(12);
    trail(6);
    trail(0);
  }
  return to;
}

}  // namespace json
