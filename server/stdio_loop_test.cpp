#include "server/stdio_loop.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "json/layout.h"
#include "tests/unit/pipe.h"

namespace {

using Handled = std::vector<std::string>;

/// The objects that are handed on when this comes in, laid out compactly.
Handled handled(std::string_view input) {
  Pipe pipe;
  std::thread writer([&] {
    pipe.write(input);
    pipe.closeWriteEnd();
  });
  Handled all;
  server::StdioLoop(pipe.readEnd(), [&](json::Value request) {
    json::Text text;
    json::appendCompact(text, request);
    all.emplace_back(text.view());
  }).run();
  writer.join();
  return all;
}

TEST(StdioLoop, EndsAtTheEndOfInput) {
  EXPECT_EQ(handled(""), Handled{});
}

TEST(StdioLoop, HandsObjectsOnInTheirOrder) {
  EXPECT_EQ(handled("{\"a\":1}\n{\"a\":2}\n{}\n"), (Handled{R"({"a":1})", R"({"a":2})", "{}"}));
}

TEST(StdioLoop, LineEndsAndBlanksAroundMakeNoDifference) {
  EXPECT_EQ(handled("{\"a\":1}\r\n \t{\"a\":2} \t\n{\"a\":3}\r\r\n"),
            (Handled{R"({"a":1})", R"({"a":2})", R"({"a":3})"}));
}

TEST(StdioLoop, LastLineMayLackItsEnd) {
  EXPECT_EQ(handled("{\"a\":1}\n{\"a\":2}"), (Handled{R"({"a":1})", R"({"a":2})"}));
}

TEST(StdioLoop, SkipsEmptyLines) {
  EXPECT_EQ(handled("\n\r\n\n{}\n\n\n{\"a\":1}\n\n"), (Handled{"{}", R"({"a":1})"}));
}

TEST(StdioLoop, DropsWhatIsNoObjectAndGoesOn) {
  for (const std::string line :
       {"plain words", " ", "\t", "1", "\"text\"", "true", "null", "[]", "[{\"a\":1}]", "{", "{}}",
        "{}{}", "{\"a\":01}", "{'a':1}", "{\"a\":1,}", "\xFF\xFE", "{\"a\":\"\t\"}"}) {
    EXPECT_EQ(handled(line + "\n{\"next\":1}\n"), Handled{R"({"next":1})"}) << line;
  }
}

TEST(StdioLoop, ObjectOverTwoLinesIsNone) {
  EXPECT_EQ(handled("{\"a\":\n1}\n"), Handled{});
}

TEST(StdioLoop, RepairsWhatIsNotUtf8) {
  EXPECT_EQ(handled("{\"a\":\"x\xFFy\"}\n"), Handled{"{\"a\":\"x\xEF\xBF\xBDy\"}"});
  EXPECT_EQ(handled("{\"\xC3\":1}\n"), Handled{"{\"\xEF\xBF\xBD\":1}"});
  EXPECT_EQ(handled("{\"a\":\"\xC3\xA9\xC3\"}\n"), Handled{"{\"a\":\"\xC3\xA9\xEF\xBF\xBD\"}"});
}

TEST(StdioLoop, DropsALineThatNoRepairMends) {
  EXPECT_EQ(handled("\xFF{}\n{}\xFF\n{\"a\":\xFF}\n{\"next\":1}\n"), Handled{R"({"next":1})"});
}

TEST(StdioLoop, LongLinesAreHandled) {
  const std::string line = "{\"a\":\"" + std::string(3'000'000, 'x') + "\"}";
  EXPECT_TRUE(handled(line + "\n{}\n") == (Handled{line, "{}"}));
}

TEST(StdioLoop, ManyLinesAreHandledEachByItself) {
  Handled expected;
  std::string input;
  for (int i = 0; i < 20000; ++i) {
    expected.push_back(R"({"n":)" + std::to_string(i) + "}");
    input += expected.back() + "\nno JSON\n";
  }
  EXPECT_TRUE(handled(input) == expected);
}

}  // namespace
