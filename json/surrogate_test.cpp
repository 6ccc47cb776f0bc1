#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tests/unit/written.h"

// Escapes of surrogates and of the code points next to them. Nothing here depends on the predicates
// of the product, or on the reference, which replaces surrogates by U+E000 to U+E7FF.

namespace json {
namespace {

std::string escape(unsigned unit) {
  std::vector<char> text(7);
  std::snprintf(text.data(), text.size(), "\\u%04x", unit);
  return text.data();
}

/// The UTF-8 of a code point with three bytes.
std::string threeBytes(unsigned codePoint) {
  return {static_cast<char>(0xE0U | codePoint >> 12U),
          static_cast<char>(0x80U | (codePoint >> 6U & 0x3FU)),
          static_cast<char>(0x80U | (codePoint & 0x3FU))};
}

std::string inArray(const std::string& string) {
  return "[\"" + string + "\"]";
}

TEST(Surrogates, UnpairedOnesAreWrittenAsEscapesAndTheirNeighboursAsUtf8) {
  for (unsigned unit = 0xD000; unit < 0xF000; ++unit) {
    const bool isSurrogate = unit >= 0xD800 && unit <= 0xDFFF;
    const std::string bytes = isSurrogate ? escape(unit) : threeBytes(unit);
    ASSERT_EQ(compact(inArray(escape(unit))), inArray(bytes));
    const std::string quoted = isSurrogate ? "\\" + bytes : bytes;
    ASSERT_EQ(prettyQuoted(inArray(escape(unit))), R"("[\n  \")" + quoted + R"(\"\n]")");
    ASSERT_EQ(stringLiteral(threeBytes(unit)), '"' + bytes + '"');
  }
}

TEST(Surrogates, AreAPairOnlyIfAHighOneIsBeforeALowOne) {
  for (const unsigned first : {0xD7FFU, 0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU, 0xE000U}) {
    for (const unsigned second : {0xD7FFU, 0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU, 0xE000U}) {
      const bool firstIsHigh = first == 0xD800 || first == 0xDBFF;
      const bool secondIsLow = second == 0xDC00 || second == 0xDFFF;
      const std::string written = compact(inArray(escape(first) + escape(second))).value();
      EXPECT_EQ(written.starts_with("[\"\xF0") || written.starts_with("[\"\xF4"),
                firstIsHigh && secondIsLow)
          << written;
    }
  }
  EXPECT_EQ(compact(R"(["\ud800\udc00\udbff\udfff"])"), "[\"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\"]");
}

}  // namespace
}  // namespace json
