#include "standin/demo/text_layout.h"

#include <gtest/gtest.h>

using demo::BreakAt;
using demo::shortened;
using demo::wrapped;
using Lines = std::vector<std::string>;

namespace {

TEST(Wrapped, BreaksAtTheLastSpaceThatFits) {
  EXPECT_EQ(wrapped("one two three", 7), (Lines{"one two", "three"}));
  EXPECT_EQ(wrapped("one two three", 6), (Lines{"one", "two", "three"}));
  EXPECT_EQ(wrapped("one two three", 13), (Lines{"one two three"}));
  EXPECT_EQ(wrapped("", 7), (Lines{""}));
}

TEST(Wrapped, CountsCharactersAndNotBytes) {
  EXPECT_EQ(wrapped("äöü äöü äöü", 7), (Lines{"äöü äöü", "äöü"}));
}

TEST(Wrapped, PrefersCommasInData) {
  EXPECT_EQ(wrapped(R"({"a":"b c","d":1})", 14, BreakAt::Commas),
            (Lines{R"({"a":"b c",)", R"("d":1})"}));
  EXPECT_EQ(wrapped("a: one two, b: three", 14, BreakAt::Commas),
            (Lines{"a: one two,", "b: three"}));
}

TEST(Wrapped, BreaksALongWordAnywhere) {
  EXPECT_EQ(wrapped("abcdefgh", 3), (Lines{"abc", "def", "gh"}));
  EXPECT_EQ(wrapped("äöüß", 3), (Lines{"äöü", "ß"}));
}

TEST(Shortened, StatesHowMuchIsMissing) {
  EXPECT_EQ(shortened(std::string(100, 'x'), 10), "xxxxxxxxxx ... (90 more characters)");
  EXPECT_EQ(shortened("ääääää", 2), "ää ... (4 more characters)");
}

TEST(Shortened, KeepsTextThatIsOnlyALittleLonger) {
  EXPECT_EQ(shortened(std::string(15, 'x'), 10), std::string(15, 'x'));
}

}  // namespace
