#include "json/number_scan.h"

#include <gtest/gtest.h>

#include <string_view>

namespace json {
namespace {

bool isWholeNumber(std::string_view text) {
  NumberScan scan;
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  return scan.read(begin, end) == end && scan.isNumber();
}

constexpr std::string_view numbers[] = {
    "0",     "-0",     "7",         "-7",     "10",      "1234567890", "0.0",  "-0.5",
    "3.14",  "10.010", "0e0",       "0E0",    "1e5",     "1E5",        "1e+5", "1e-5",
    "1E+05", "1.5e10", "-1.5E-007", "1e4000", "1e-4000", "0.1e1",      "9E99"};

constexpr std::string_view noNumbers[] = {
    "",    "-",   "+1", ".5",   "-.5",  "1.",   "1.e5", "1e",    "1e+", "1e-", "1E",
    "01",  "-01", "00", "1.5.", "1e5.", "1e5e", "--1",  "1-",    "1+",  "0x1", "1_000",
    "1,5", " 1",  "1 ", "Inf",  "NaN",  "-e",   "e5",   "1.5e+", "0-",  "-+1", "1a",
};

TEST(NumberScan, ReadsEverySpellingOfANumber) {
  for (const std::string_view number : numbers) EXPECT_TRUE(isWholeNumber(number)) << number;
}

TEST(NumberScan, ReadsNothingElse) {
  for (const std::string_view text : noNumbers) EXPECT_FALSE(isWholeNumber(text)) << text;
}

TEST(NumberScan, StopsAtTheFirstByteThatIsNotTheNumbers) {
  constexpr std::string_view text = "-12.5e3,";
  NumberScan scan;
  EXPECT_EQ(scan.read(text.data(), text.data() + text.size()), text.data() + 7);
  EXPECT_TRUE(scan.isNumber());
}

TEST(NumberScan, StopsBehindALeadingZero) {
  constexpr std::string_view text = "01";
  NumberScan scan;
  EXPECT_EQ(scan.read(text.data(), text.data() + text.size()), text.data() + 1);
  EXPECT_TRUE(scan.isNumber());
}

TEST(NumberScan, ReadsOnWhereAnEarlierPieceEnded) {
  for (const std::string_view number : numbers) {
    for (std::size_t split = 0; split <= number.size(); ++split) {
      const char* const begin = number.data();
      const char* const middle = begin + split;
      const char* const end = begin + number.size();
      NumberScan scan;
      EXPECT_EQ(scan.read(begin, middle), middle) << number << " at " << split;
      EXPECT_EQ(scan.read(middle, end), end) << number << " at " << split;
      EXPECT_TRUE(scan.isNumber()) << number << " at " << split;
    }
  }
}

TEST(NumberScan, IsNoNumberWhileDigitsAreOutstanding) {
  for (const std::string_view start : {"", "-", "1.", "-0.", "1e", "1e+", "2.5E-"}) {
    NumberScan scan;
    scan.read(start.data(), start.data() + start.size());
    EXPECT_FALSE(scan.isNumber()) << start;
  }
}

}  // namespace
}  // namespace json
