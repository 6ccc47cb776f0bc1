#include "json/read_string.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace json {
namespace {

/// The code point in the general pattern of UTF-8, even if this encoding is not allowed.
std::string encoded(char32_t codePoint, int length) {
  constexpr std::array<unsigned, 5> leads{0, 0, 0xC0, 0xE0, 0xF0};
  std::string bytes;
  for (int shift = 6 * (length - 1); shift >= 0; shift -= 6) {
    const auto bits = static_cast<unsigned>(codePoint >> static_cast<unsigned>(shift));
    bytes += static_cast<char>(bytes.empty() ? leads.at(static_cast<std::size_t>(length)) | bits
                                             : 0x80U | (bits & 0x3FU));
  }
  return bytes;
}

std::string encoded(char32_t codePoint) {
  return encoded(codePoint, codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4);
}

/// How reading a part went, and how many bytes it moved.
struct Skipped {
  Progress progress;
  std::ptrdiff_t bytes;
  bool operator==(const Skipped&) const = default;
};

// The bytes are in memory of exactly their size, so that sanitizers find a read after them.
Skipped skip(Progress (*skipPart)(const char*&, const char*), std::string_view text) {
  const std::vector<char> bytes(text.begin(), text.end());
  const char* at = bytes.data();
  const Progress progress = skipPart(at, bytes.data() + bytes.size());
  return {progress, at - bytes.data()};
}

TEST(SkipNonAscii, AcceptsTheEncodingsOfAllCodePointsExceptSurrogates) {
  for (char32_t codePoint = 0x80; codePoint <= 0x10FFFF; ++codePoint) {
    const std::string bytes = encoded(codePoint);
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    const Skipped expected = isSurrogate ? Skipped{Progress::malformed, 0}
                                         : Skipped{Progress::done, static_cast<int>(bytes.size())};
    ASSERT_EQ(skip(skipNonAscii, bytes), expected) << std::hex << static_cast<unsigned>(codePoint);
  }
}

TEST(SkipNonAscii, RejectsOverlongEncodings) {
  for (char32_t codePoint = 0; codePoint < 0x10000; ++codePoint) {
    for (int length = codePoint < 0x80 ? 2 : codePoint < 0x800 ? 3 : 4; length <= 4; ++length) {
      ASSERT_EQ(skip(skipNonAscii, encoded(codePoint, length)).progress, Progress::malformed)
          << std::hex << static_cast<unsigned>(codePoint) << " in " << length;
    }
  }
}

TEST(SkipNonAscii, RejectsCodePointsAboveTheLast) {
  for (char32_t codePoint = 0x110000; codePoint < 0x200000; ++codePoint) {
    ASSERT_EQ(skip(skipNonAscii, encoded(codePoint, 4)).progress, Progress::malformed)
        << std::hex << static_cast<unsigned>(codePoint);
  }
}

TEST(SkipNonAscii, RejectsControlCharactersAndBytesThatStartNoSequence) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    if (byte >= 0x20 && byte < 0x80) continue;
    if (byte >= 0xC2 && byte < 0xF5) continue;
    const std::string bytes{static_cast<char>(byte), '\x80', '\x80', '\x80', '\x80'};
    EXPECT_EQ(skip(skipNonAscii, bytes).progress, Progress::malformed) << byte;
  }
}

TEST(SkipNonAscii, RejectsEveryOtherByteInThePlaceOfAContinuation) {
  for (const std::string& valid : {encoded(0x80), encoded(0xFFFF), encoded(0x10000)}) {
    for (std::size_t place = 1; place < valid.size(); ++place) {
      for (unsigned byte = 0; byte < 256; ++byte) {
        if (byte >= 0x80 && byte < 0xC0) continue;
        std::string bytes = valid;
        bytes[place] = static_cast<char>(byte);
        EXPECT_EQ(skip(skipNonAscii, bytes).progress, Progress::malformed) << place << ' ' << byte;
      }
    }
  }
}

TEST(SkipNonAscii, IsCutShortBeforeTheLastByte) {
  for (const char32_t codePoint : {0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U}) {
    const std::string bytes = encoded(codePoint);
    for (std::size_t present = 1; present < bytes.size(); ++present) {
      EXPECT_EQ(skip(skipNonAscii, bytes.substr(0, present)), (Skipped{Progress::cutShort, 0}));
    }
  }
}

TEST(SkipNonAscii, StopsAfterOneSequence) {
  EXPECT_EQ(skip(skipNonAscii, "\xC3\xA9zzz").bytes, 2);
  EXPECT_EQ(skip(skipNonAscii, "\xE2\x82\xAC\xFF").bytes, 3);
  EXPECT_EQ(skip(skipNonAscii, "\xF0\x9F\x98\x80\x80").bytes, 4);
}

TEST(SkipEscape, SkipsShortAndUnicodeEscapes) {
  EXPECT_EQ(skip(skipEscape, R"(\nx)"), (Skipped{Progress::done, 2}));
  EXPECT_EQ(skip(skipEscape, R"(\u00e9x)"), (Skipped{Progress::done, 6}));
  EXPECT_EQ(skip(skipEscape, R"(\x)"), (Skipped{Progress::malformed, 0}));
}

TEST(SkipEscape, IsCutShortBeforeTheLastByte) {
  constexpr std::string_view escape = R"(\u00e9)";
  for (std::size_t present = 1; present < escape.size(); ++present) {
    EXPECT_EQ(skip(skipEscape, escape.substr(0, present)), (Skipped{Progress::cutShort, 0}));
  }
}

/// The result of skipToQuote() for the text after an opening quote.
struct String {
  Progress progress;
  std::ptrdiff_t length;
  bool hasEscapes;
  bool operator==(const String&) const = default;
};

String toQuote(std::string_view text) {
  const std::vector<char> bytes(text.begin(), text.end());
  const char* at = bytes.data();
  bool hasEscapes = false;
  const Progress progress = skipToQuote(at, bytes.data() + bytes.size(), hasEscapes);
  return {progress, at - bytes.data(), hasEscapes};
}

TEST(SkipToQuote, FindsTheQuoteAtEveryDistanceWithAnyTextAfterIt) {
  for (std::size_t length = 0; length <= 200; ++length) {
    for (const std::size_t after : {0U, 1U, 14U, 15U, 16U, 17U, 31U, 32U, 63U, 64U, 65U}) {
      const std::string text = std::string(length, 'a') + '"' + std::string(after, '\\');
      ASSERT_EQ(toQuote(text), (String{Progress::done, static_cast<int>(length), false}))
          << length << " before, " << after << " after";
    }
  }
}

TEST(SkipToQuote, PassesEscapesAndNonAsciiAtEveryDistance) {
  for (const std::string_view unit :
       {R"(\")", R"(\\)", R"(\u0022)", "\xC3\xA9", "\xF0\x9F\x98\x80"}) {
    for (std::size_t before = 0; before <= 140; ++before) {
      for (const std::size_t after : {0U, 1U, 40U, 130U}) {
        const std::string inside = std::string(before, 'a') + std::string(unit) +
                                   std::string(unit) + std::string(after, 'z');
        const String expected{Progress::done, static_cast<int>(inside.size()), unit[0] == '\\'};
        ASSERT_EQ(toQuote(inside + "\"]"), expected) << unit << ' ' << before << ' ' << after;
      }
    }
  }
}

TEST(SkipToQuote, RejectsControlCharactersAtEveryDistance) {
  for (std::size_t before = 0; before <= 140; ++before) {
    for (const char byte : {'\0', '\n', '\x1F', '\x80', '\xFF'}) {
      const std::string text = std::string(before, 'a') + byte + std::string(70, '"');
      ASSERT_EQ(toQuote(text).progress, Progress::malformed) << before;
    }
  }
}

TEST(SkipToQuote, ContinuesWhereTheTextWasCutShort) {
  const std::string text = std::string(50, 'a') + R"(\u00e9)" + std::string(60, 'b') +
                           "\xF0\x9F\x98\x80" + R"(\")" + std::string(30, 'c') + '"';
  for (std::size_t cut = 0; cut < text.size(); ++cut) {
    const char* at = text.data();
    bool hasEscapes = false;
    ASSERT_EQ(skipToQuote(at, text.data() + cut, hasEscapes), Progress::cutShort) << cut;
    ASSERT_LE(at, text.data() + cut);
    ASSERT_EQ(skipToQuote(at, text.data() + text.size(), hasEscapes), Progress::done) << cut;
    ASSERT_EQ(at, text.data() + text.size() - 1) << cut;
  }
}

}  // namespace
}  // namespace json
