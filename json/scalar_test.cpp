#include "json/scalar.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace json {
namespace {

constexpr std::string_view numbers[] = {
    "0",     "-0",     "7",         "-7",     "10",      "1234567890", "0.0",  "-0.5",
    "3.14",  "10.010", "0e0",       "0E0",    "1e5",     "1E5",        "1e+5", "1e-5",
    "1E+05", "1.5e10", "-1.5E-007", "1e4000", "1e-4000", "0.1e1",      "9E99"};

constexpr std::string_view malformed[] = {
    "",    "-",   "+1", ".5",   "-.5",  "1.",   "1.e5", "1e",    "1e+", "1e-", "1E",
    "01",  "-01", "00", "1.5.", "1e5.", "1e5e", "--1",  "1-",    "1+",  "0x1", "1_000",
    "1,5", " 1",  "1 ", "Inf",  "NaN",  "-e",   "e5",   "1.5e+", "0-",  "-+1", "1a",
};

TEST(IsNumber, AcceptsEverySpellingOfANumber) {
  for (const std::string_view number : numbers) EXPECT_TRUE(isNumber(number)) << number;
}

TEST(IsNumber, RejectsEverythingElse) {
  for (const std::string_view text : malformed) EXPECT_FALSE(isNumber(text)) << text;
}

TEST(ScalarKind, IsTheLiteralOrANumber) {
  EXPECT_EQ(scalarKind("true"), Kind::trueLiteral);
  EXPECT_EQ(scalarKind("false"), Kind::falseLiteral);
  EXPECT_EQ(scalarKind("null"), Kind::null);
  for (const std::string_view number : numbers) EXPECT_EQ(scalarKind(number), Kind::number);
}

TEST(ScalarKind, IsNoneForEverythingElse) {
  for (const std::string_view text : malformed) EXPECT_EQ(scalarKind(text), std::nullopt) << text;
  for (const std::string_view text : {"tru", "truee", "True", "nul", "nulll", "fals", "alse"}) {
    EXPECT_EQ(scalarKind(text), std::nullopt) << text;
  }
}

TEST(SkipScalar, StopsAtTheFirstByteThatNoScalarContains) {
  for (int value = 0; value < 256; ++value) {
    const std::string text = std::string("1") + static_cast<char>(value) + "2";
    const bool isPart =
        value != 0 &&
        std::string_view("0123456789+-.eEtrufalsn").contains(static_cast<char>(value));
    EXPECT_EQ(skipScalar(text.data(), text.data() + 3) - text.data(), isPart ? 3 : 1) << value;
  }
}

TEST(SkipScalar, StopsAtTheEnd) {
  constexpr std::string_view text = "12345";
  EXPECT_EQ(skipScalar(text.data(), text.data() + 3), text.data() + 3);
  EXPECT_EQ(skipScalar(text.data(), text.data()), text.data());
}

}  // namespace
}  // namespace json
