#include "tests/support/request_end.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

// After how many bytes, given one by one, the request is complete.
std::optional<std::size_t> endOf(std::string_view text) {
  RequestEnd end;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (end.reachedBy(text.substr(i, 1))) return i + 1;
  }
  return std::nullopt;
}

TEST(RequestEnd, IsTheClosingBraceOfTheObject) {
  for (const std::string_view text : {R"({})", R"( {"a":1})", R"({"a":{"b":[{}]},"c":[]})"}) {
    EXPECT_EQ(endOf(text), text.size()) << text;
  }
}

TEST(RequestEnd, IgnoresBracesInStrings) {
  for (const std::string_view text : {R"({"}":"]"})", R"({"a":"\"}"})", R"({"a\\":"}\\"})"}) {
    EXPECT_EQ(endOf(text), text.size()) << text;
  }
}

TEST(RequestEnd, IsNotReachedInAnIncompleteRequest) {
  for (const std::string_view text : {"", "  ", "{", R"({"a":"}")", R"({"a":[})", R"({"a":"\")"}) {
    EXPECT_EQ(endOf(text), std::nullopt) << text;
  }
}

TEST(RequestEnd, DoesNotDependOnHowTheBytesAreSplit) {
  const std::string_view text = R"({"a":"x\"{","b":[{"c":"\\"}]})";
  for (std::size_t cut = 0; cut < text.size(); ++cut) {
    RequestEnd end;
    EXPECT_FALSE(end.reachedBy(text.substr(0, cut))) << cut;
    EXPECT_TRUE(end.reachedBy(text.substr(cut))) << cut;
  }
}

}  // namespace
