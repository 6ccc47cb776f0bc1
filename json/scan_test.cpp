#include "json/scan.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace json {
namespace {

template <StopAt stop>
struct Looking {
  static constexpr StopAt forWhat = stop;
};

template <typename Stop>
class Scan : public testing::Test {
 protected:
  static constexpr StopAt stop = Stop::forWhat;

  /// How far a scan comes, one byte at a time.
  static std::ptrdiff_t plainly(const std::vector<char>& bytes, std::size_t from) {
    std::size_t at = from;
    while (at < bytes.size() && !stopsAt<stop>(bytes[at])) ++at;
    return static_cast<std::ptrdiff_t>(at - from);
  }

  // The bytes stand in memory of just their size, so that a read beyond them is found when
  // the tests run with sanitizers.
  static std::ptrdiff_t scanned(const std::vector<char>& bytes, std::size_t from) {
    const char* const begin = bytes.data() + from;
    return scan<stop>(begin, bytes.data() + bytes.size()) - begin;
  }

  /// Copies the bytes up to `end`, and looks whether that agrees with the plain way.
  static void expectCopied(const std::vector<char>& bytes, std::size_t from, std::size_t end) {
    const std::vector<char> visible(bytes.begin(),
                                    bytes.begin() + static_cast<std::ptrdiff_t>(end));
    const std::ptrdiff_t expected = plainly(visible, from);
    std::vector<char> copy(end - from + static_cast<std::size_t>(blockSize), '?');
    const char* const begin = bytes.data() + from;
    const Copied copied =
        copyScan<stop>(begin, bytes.data() + end, bytes.data() + bytes.size(), copy.data());
    ASSERT_EQ(copied.from - begin, expected);
    ASSERT_EQ(copied.to - copy.data(), expected);
    ASSERT_EQ(std::string(copy.data(), copied.to), std::string(begin, copied.from));
  }
};

struct StopName {
  template <typename Stop>
  static std::string GetName(int /*index*/) {
    switch (Stop::forWhat) {
      case StopAt::unusual: return "Unusual";
      case StopAt::respelled: return "Respelled";
      case StopAt::mustBeEscaped: break;
    }
    return "MustBeEscaped";
  }
};

using EveryStop = testing::Types<Looking<StopAt::unusual>, Looking<StopAt::respelled>,
                                 Looking<StopAt::mustBeEscaped>>;
TYPED_TEST_SUITE(Scan, EveryStop, StopName);

TYPED_TEST(Scan, AgreesWithThePlainWayForEveryByteAtEveryPlace) {
  for (std::size_t size = 0; size <= 40; ++size) {
    std::vector<char> bytes(size, 'a');
    ASSERT_EQ(this->scanned(bytes, 0), static_cast<std::ptrdiff_t>(size));
    for (char& byte : bytes) {
      for (int value = 0; value < 256; ++value) {
        byte = static_cast<char>(value);
        ASSERT_EQ(this->scanned(bytes, 0), this->plainly(bytes, 0))
            << "byte " << value << " at " << &byte - bytes.data() << " of " << size;
      }
      byte = 'a';
    }
  }
}

TYPED_TEST(Scan, AgreesWithThePlainWayAtEveryAlignment) {
  for (std::size_t place = 0; place <= 100; ++place) {
    std::vector<char> bytes(100, 'z');
    if (place < bytes.size()) bytes[place] = '\\';
    for (std::size_t from = 0; from <= bytes.size(); ++from) {
      ASSERT_EQ(this->scanned(bytes, from), this->plainly(bytes, from))
          << "from " << from << ", backslash at " << place;
    }
  }
}

TYPED_TEST(Scan, FindsTheFirstOfMany) {
  std::vector<char> bytes(64, '\\');
  for (std::size_t clean = 0; clean <= bytes.size(); ++clean) {
    ASSERT_EQ(this->scanned(bytes, 0), static_cast<std::ptrdiff_t>(clean));
    if (clean < bytes.size()) bytes[clean] = 'a';
  }
}

TYPED_TEST(Scan, CopiesEveryByteUpToTheOneToStopAt) {
  std::vector<char> bytes(40, 'a');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('A' + i);
  for (char& byte : bytes) {
    const char before = byte;
    for (int value = 0; value < 256; ++value) {
      byte = static_cast<char>(value);
      ASSERT_NO_FATAL_FAILURE(this->expectCopied(bytes, 0, bytes.size()))
          << "byte " << value << " at " << &byte - bytes.data();
    }
    byte = before;
  }
}

TYPED_TEST(Scan, CopiesNothingBehindTheEnd) {
  for (std::size_t size = 0; size <= 70; ++size) {
    std::vector<char> bytes(size, 'x');
    for (std::size_t end = 0; end <= size; ++end) {
      if (end < size) bytes[end] = '\\';
      for (std::size_t from = 0; from <= end; from += 3) {
        ASSERT_NO_FATAL_FAILURE(this->expectCopied(bytes, from, end))
            << "from " << from << " to " << end << " of " << size;
      }
    }
  }
}

TYPED_TEST(Scan, MarksInAMaskOf64WhatThePlainWayStopsAt) {
  std::vector<char> bytes(256);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 37);
  for (std::size_t from = 0; from + 64 <= bytes.size(); ++from) {
    const std::uint64_t stops = stopsIn64<TestFixture::stop>(bytes.data() + from);
    for (std::size_t i = 0; i < 64; ++i) {
      ASSERT_EQ((stops >> i & 1U) != 0, stopsAt<TestFixture::stop>(bytes[from + i]))
          << "byte " << from + i;
    }
  }
}

TYPED_TEST(Scan, CountsTheCleanBytesOfTwoBlocks) {
  constexpr std::ptrdiff_t both = 2 * blockSize;
  for (std::ptrdiff_t place = 0; place <= both; ++place) {
    std::vector<char> bytes(static_cast<std::size_t>(both) + 1, 'a');
    bytes[static_cast<std::size_t>(place)] = '\\';
    ASSERT_EQ(cleanBytesIn2<TestFixture::stop>(bytes.data()), place);
  }
}

/// What begins an escape, found from left to right.
std::uint64_t escapesPlainly(std::uint64_t backslashes) {
  std::uint64_t escapes = 0;
  for (unsigned i = 0; i < 64; ++i) {
    if ((backslashes >> i & 1U) == 0) continue;
    escapes |= std::uint64_t{1} << i;
    ++i;  // what it escapes begins none
  }
  return escapes;
}

TEST(EscapesAmong, AgreesWithThePlainWayForEveryRunAtEveryPlace) {
  for (unsigned size = 1; size <= 64; ++size) {
    for (unsigned place = 0; place + size <= 64; ++place) {
      const std::uint64_t run = ~std::uint64_t{0} >> (64 - size) << place;
      ASSERT_EQ(escapesAmong(run), escapesPlainly(run)) << size << " at " << place;
    }
  }
}

TEST(EscapesAmong, AgreesWithThePlainWayForManyRuns) {
  std::mt19937_64 random(64);
  for (int round = 0; round < 10'000; ++round) {
    const std::uint64_t some = random();
    const std::uint64_t others = random();
    const std::uint64_t sparse = some & others;
    const std::uint64_t dense = some | others;
    ASSERT_EQ(escapesAmong(sparse), escapesPlainly(sparse)) << sparse;
    ASSERT_EQ(escapesAmong(dense), escapesPlainly(dense)) << dense;
  }
}

TEST(CopyShort, CopiesAllOfAnySize) {
  for (std::size_t size = 0; size <= 70; ++size) {
    for (std::size_t behind = 0; behind <= 20; ++behind) {
      std::vector<char> bytes(size + behind);
      for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('A' + i % 50);
      std::vector<char> copy(size + static_cast<std::size_t>(blockSize), '?');
      const char* const readable = bytes.data() + bytes.size();
      ASSERT_EQ(copyShort(bytes.data(), size, readable, copy.data()) - copy.data(),
                static_cast<std::ptrdiff_t>(size));
      ASSERT_EQ(std::string(copy.data(), size), std::string(bytes.data(), size));
    }
  }
}

template <StopAt stop>
std::string stops() {
  std::string all;
  for (int value = 0; value < 256; ++value) {
    if (stopsAt<stop>(static_cast<char>(value))) all += static_cast<char>(value);
  }
  return all;
}

std::string range(int from, int to) {
  std::string all;
  for (int value = from; value <= to; ++value) all += static_cast<char>(value);
  return all;
}

TEST(StopsAt, InAStringBeingReadIsWhatEndsItOrNeedsALook) {
  EXPECT_EQ(stops<StopAt::unusual>(), range(0, 0x1F) + "\"\\" + range(0x80, 0xFF));
}

TEST(StopsAt, InAWellFormedStringIsSlashesOfBothKinds) {
  EXPECT_EQ(stops<StopAt::respelled>(), "/\\");
}

TEST(StopsAt, InTextToBeQuotedIsWhatMustBeEscaped) {
  EXPECT_EQ(stops<StopAt::mustBeEscaped>(), range(0, 0x1F) + "\"/\\\xED");
}

}  // namespace
}  // namespace json
