#include "json/utf8.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "json/escape.h"

namespace json {
namespace {

using enum Utf8Sequence::State;

Utf8Sequence judge(std::string_view bytes) {
  return utf8Sequence(bytes.data(), bytes.data() + bytes.size());
}

std::string encoded(char32_t codePoint) {
  std::array<char, 4> bytes{};
  return {bytes.data(), writeUtf8(bytes.data(), codePoint)};
}

TEST(WriteUtf8, WritesEachLengthFromItsFirstToItsLastCodePoint) {
  EXPECT_EQ(encoded(U'\0'), std::string(1, '\0'));
  EXPECT_EQ(encoded(0x7F), "\x7F");
  EXPECT_EQ(encoded(0x80), "\xC2\x80");
  EXPECT_EQ(encoded(0x7FF), "\xDF\xBF");
  EXPECT_EQ(encoded(0x800), "\xE0\xA0\x80");
  EXPECT_EQ(encoded(0xFFFF), "\xEF\xBF\xBF");
  EXPECT_EQ(encoded(0x10000), "\xF0\x90\x80\x80");
  EXPECT_EQ(encoded(0x10FFFF), "\xF4\x8F\xBF\xBF");
}

TEST(WriteUtf8, WritesASurrogateByTheGeneralPattern) {
  EXPECT_EQ(encoded(0xD800), "\xED\xA0\x80");
  EXPECT_EQ(encoded(0xDFFF), "\xED\xBF\xBF");
}

TEST(DecodeUtf8, GivesBackEveryCodePointSurrogatesIncluded) {
  for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    const std::string bytes = encoded(codePoint);
    ASSERT_EQ(decodeUtf8(bytes.data(), static_cast<std::ptrdiff_t>(bytes.size())), codePoint);
  }
}

TEST(Utf8Sequence, OfEveryCodePointButSurrogatesIsWellFormed) {
  for (char32_t codePoint = 0x80; codePoint <= 0x10FFFF; ++codePoint) {
    const std::string bytes = encoded(codePoint);
    const Utf8Sequence sequence = judge(bytes);
    if (isSurrogate(codePoint)) {
      ASSERT_EQ(sequence.state, illFormed) << std::hex << static_cast<unsigned>(codePoint);
    } else {
      ASSERT_EQ(sequence.state, wellFormed) << std::hex << static_cast<unsigned>(codePoint);
      ASSERT_EQ(sequence.length, static_cast<std::ptrdiff_t>(bytes.size()));
    }
  }
}

/// Whether the bytes are the UTF-8 of a code point, found out by decoding and encoding again.
bool isSomeCodePoint(std::string_view bytes, char32_t codePoint) {
  return codePoint <= 0x10FFFF && !isSurrogate(codePoint) && encoded(codePoint) == bytes;
}

TEST(Utf8Sequence, OfTwoOrThreeBytesIsWellFormedJustWhenItIsACodePoints) {
  for (unsigned lead = 0x80; lead < 0xF0; ++lead) {
    for (unsigned second = 0; second < 256; ++second) {
      for (const unsigned third : {0x00U, 0x7FU, 0x80U, 0xBFU, 0xC0U, 0xFFU}) {
        const std::string bytes{static_cast<char>(lead), static_cast<char>(second),
                                static_cast<char>(third)};
        const std::ptrdiff_t length = lead < 0xE0 ? 2 : 3;
        const std::string_view judged(bytes.data(), static_cast<std::size_t>(length));
        const bool expected = isSomeCodePoint(judged, decodeUtf8(bytes.data(), length));
        ASSERT_EQ(judge(bytes).state == wellFormed, expected)
            << std::hex << lead << ' ' << second << ' ' << third;
      }
    }
  }
}

TEST(Utf8Sequence, OfFourBytesIsWellFormedJustWhenItIsACodePoints) {
  for (unsigned lead = 0xF0; lead < 0x100; ++lead) {
    for (unsigned second = 0; second < 256; ++second) {
      for (const unsigned third : {0x7FU, 0x80U, 0xBFU, 0xC0U}) {
        for (const unsigned fourth : {0x7FU, 0x80U, 0xBFU, 0xC0U}) {
          const std::string bytes{static_cast<char>(lead), static_cast<char>(second),
                                  static_cast<char>(third), static_cast<char>(fourth)};
          const bool expected = lead < 0xF8 && isSomeCodePoint(bytes, decodeUtf8(bytes.data(), 4));
          ASSERT_EQ(judge(bytes).state == wellFormed, expected)
              << std::hex << lead << ' ' << second << ' ' << third << ' ' << fourth;
        }
      }
    }
  }
}

TEST(Utf8Sequence, IsCutShortWhileItCanStillBecomeWellFormed) {
  for (const char32_t codePoint :
       {0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
    const std::string bytes = encoded(codePoint);
    for (std::size_t present = 1; present < bytes.size(); ++present) {
      EXPECT_EQ(judge(std::string_view(bytes).substr(0, present)).state, cutShort)
          << std::hex << static_cast<unsigned>(codePoint) << " cut to " << present;
    }
  }
}

TEST(Utf8Sequence, IsIllFormedAsSoonAsNothingCanMendIt) {
  for (const std::string_view bytes :
       {"\x80", "\xBF", "\xC0", "\xC1", "\xF5", "\xFF", "\xE0\x9F", "\xED\xA0", "\xF0\x8F",
        "\xF4\x90", "\xE2\x28", "\xE2\x82\x28", "\xF0\x9F\x28", "\xF0\x9F\x98\x28"}) {
    EXPECT_EQ(judge(bytes).state, illFormed) << testing::PrintToString(std::string(bytes));
  }
}

TEST(Utf8Sequence, EndsBeforeWhatFollowsIt) {
  EXPECT_EQ(judge("\xC3\xA9zzz").length, 2);
  EXPECT_EQ(judge("\xE2\x82\xAC\xFF").length, 3);
  EXPECT_EQ(judge("\xF0\x9F\x98\x80\x80").length, 4);
}

}  // namespace
}  // namespace json
