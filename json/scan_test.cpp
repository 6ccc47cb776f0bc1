#include "json/scan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "json/string_writer.h"

namespace json {
namespace {

// The predicates, one byte at a time.
constexpr bool byteNeedsCheck(unsigned char byte) {
  return byte == '"' || byte == '\\' || byte < 0x20 || byte >= 0x80;
}
constexpr bool byteIsSlash(unsigned char byte) {
  return byte == '/';
}
constexpr bool byteIsBackslash(unsigned char byte) {
  return byte == '\\';
}
constexpr bool byteIsAnySlash(unsigned char byte) {
  return byteIsSlash(byte) || byteIsBackslash(byte);
}
constexpr bool byteIsLetterU(unsigned char byte) {
  return byte == 'u';
}

template <auto matches>
std::uint64_t findMatches(const char* from, std::ptrdiff_t /*size*/) {
  return mask<matches>(from);
}

/// The mask of the first `size` bytes, found byte by byte.
template <auto byteMatches>
std::uint64_t expectedMask(const char* from, std::ptrdiff_t size) {
  std::uint64_t expected = 0;
  for (std::ptrdiff_t i = 0; i < size; ++i) {
    const bool matches = byteMatches(static_cast<unsigned char>(from[i]));
    expected |= std::uint64_t{matches} << i;
  }
  return expected;
}

template <auto matches, auto byteMatches>
void expectMasksOfEveryByte() {
  std::vector<char> bytes(64, 'a');
  for (char& byte : bytes) {
    for (int value = 0; value < 256; ++value) {
      byte = static_cast<char>(value);
      ASSERT_EQ(mask<matches>(bytes.data()), expectedMask<byteMatches>(bytes.data(), 64))
          << "byte " << value << " at " << &byte - bytes.data();
    }
    byte = 'a';
  }
}

TEST(Mask, HasABitForEachMatchingByte) {
  expectMasksOfEveryByte<needsCheck, byteNeedsCheck>();
  expectMasksOfEveryByte<isSlash, byteIsSlash>();
  expectMasksOfEveryByte<isBackslash, byteIsBackslash>();
  expectMasksOfEveryByte<isAnySlash, byteIsAnySlash>();
  expectMasksOfEveryByte<isLetterU, byteIsLetterU>();
}

TEST(MaskOf, OneBlockIsTheLowestQuarterOfFour) {
  std::vector<char> bytes(64);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = i % 3 == 0 ? '/' : 'a';
  const std::uint64_t all = mask<isSlash>(bytes.data());
  for (std::ptrdiff_t block = 0; block < 4; ++block) {
    EXPECT_EQ(maskOf(isSlash(load(bytes.data() + block * blockSize))),
              all >> block * blockSize & 0xFFFFU);
  }
}

// The bytes are in memory of exactly their size, so that sanitizers find a read after them.
TEST(FindIn, CountsOnlyTheGivenBytesAndReadsNoneAfterTheReadableOnes) {
  for (std::ptrdiff_t size = 1; size <= 64; ++size) {
    for (std::ptrdiff_t after = 0; after <= 64; ++after) {
      const std::vector<char> bytes(static_cast<std::size_t>(size + after), '/');
      const std::uint64_t found =
          findIn<findMatches<isSlash>>(bytes.data(), size, bytes.data() + bytes.size());
      ASSERT_EQ(found, ~std::uint64_t{0} >> (64 - size)) << size << " and " << after;
    }
  }
}

TEST(IsEscaped, AfterAnOddNumberOfBackslashes) {
  const std::string text = "a" + std::string(20, '\\') + "b";
  for (std::size_t start = 0; start <= 1; ++start) {
    for (std::size_t place = 1; place < text.size(); ++place) {
      EXPECT_EQ(isEscaped(text.data() + start, text.data() + place), (place - 1) % 2 == 1) << place;
    }
  }
}

}  // namespace
}  // namespace json
