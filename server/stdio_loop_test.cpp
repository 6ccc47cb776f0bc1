#include "server/stdio_loop.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "json/writer.h"
#include "tests/unit/pipe.h"

namespace {

using Handled = std::vector<std::string>;

/// The objects that are handled, as compact text, if the input arrives in these pieces.
Handled handledInPieces(const std::vector<std::string>& pieces) {
  Pipe pipe;
  std::thread writer = writeInPieces(pipe, pieces);
  Handled all;
  server::StdioLoop(pipe.readEnd(), [&](json::Value request) {
    common::Bytes text;
    json::appendCompact(text, request);
    all.emplace_back(text.view());
  }).run();
  writer.join();
  return all;
}

Handled handled(const std::string& input) {
  return handledInPieces({input});
}

TEST(StdioLoop, EndsAtTheEndOfInput) {
  EXPECT_EQ(handled(""), Handled{});
}

TEST(StdioLoop, HandlesObjectsInTheirOrder) {
  EXPECT_EQ(handled("{\"a\":1}\n{\"a\":2}\n{}\n"), (Handled{R"({"a":1})", R"({"a":2})", "{}"}));
}

TEST(StdioLoop, IgnoresLineEndsAndWhiteSpaceAroundAnObject) {
  EXPECT_EQ(handled("{\"a\":1}\r\n \t{\"a\":2} \t\n{\"a\":3}\r\r\n"),
            (Handled{R"({"a":1})", R"({"a":2})", R"({"a":3})"}));
}

TEST(StdioLoop, LastLineMayLackItsEnd) {
  EXPECT_EQ(handled("{\"a\":1}\n{\"a\":2}"), (Handled{R"({"a":1})", R"({"a":2})"}));
}

TEST(StdioLoop, SkipsEmptyLines) {
  EXPECT_EQ(handled("\n\r\n\n{}\n\n\n{\"a\":1}\n\n"), (Handled{"{}", R"({"a":1})"}));
}

TEST(StdioLoop, DropsLinesThatAreNotObjects) {
  for (const std::string line :
       {"plain words", " ", "\t", "1", "\"text\"", "true", "null", "[]", "[{\"a\":1}]", "{", "{}}",
        "{}{}", "{\"a\":01}", "{'a':1}", "{\"a\":1,}", "\xFF\xFE", "{\"a\":\"\t\"}"}) {
    EXPECT_EQ(handled(line + "\n{\"next\":1}\n"), Handled{R"({"next":1})"}) << line;
  }
}

TEST(StdioLoop, DropsAnObjectOnTwoLines) {
  EXPECT_EQ(handled("{\"a\":\n1}\n"), Handled{});
}

TEST(StdioLoop, RepairsInvalidUtf8) {
  EXPECT_EQ(handled("{\"a\":\"x\xFFy\"}\n"), Handled{"{\"a\":\"x\xEF\xBF\xBDy\"}"});
  EXPECT_EQ(handled("{\"\xC3\":1}\n"), Handled{"{\"\xEF\xBF\xBD\":1}"});
  EXPECT_EQ(handled("{\"a\":\"\xC3\xA9\xC3\"}\n"), Handled{"{\"a\":\"\xC3\xA9\xEF\xBF\xBD\"}"});
}

TEST(StdioLoop, DropsALineThatIsInvalidEvenAfterRepair) {
  EXPECT_EQ(handled("\xFF{}\n{}\xFF\n{\"a\":\xFF}\n{\"next\":1}\n"), Handled{R"({"next":1})"});
}

TEST(StdioLoop, HandlesLongLines) {
  const std::string line = R"({"a":")" + std::string(3'000'000, 'x') + "\"}";
  EXPECT_TRUE(handled(line + "\n{}\n") == (Handled{line, "{}"}));
}

TEST(StdioLoop, LinesMayArriveInPieces) {
  EXPECT_EQ(handledInPieces({"{\"a\"", ":\"\xE2", "\x82\xAC\\u00", "e9\",\"b\":tr", "ue}\r",
                             "\n{\"c\":1", "2}"}),
            (Handled{"{\"a\":\"\xE2\x82\xAC\xC3\xA9\",\"b\":true}", R"({"c":12})"}));
}

TEST(StdioLoop, PieceMayEndInACarriageReturn) {
  EXPECT_EQ(handledInPieces({"{}\r", "\r\n{\"a\":\r", "1}\n"}), (Handled{"{}", R"({"a":1})"}));
  EXPECT_EQ(handledInPieces({"{}\r", "x\n{\"next\":1}\n"}), Handled{R"({"next":1})"});
}

TEST(StdioLoop, RepairsALineThatArrivesInPieces) {
  EXPECT_EQ(handledInPieces({"{\"a\":\"\xFF", "b\xE2\x82", "c\"}", "\n"}),
            Handled{"{\"a\":\"\xEF\xBF\xBD"
                    "b\xEF\xBF\xBD"
                    "c\"}"});
}

TEST(StdioLoop, InvalidLineInPiecesDoesNotAffectTheNext) {
  EXPECT_EQ(handledInPieces({"{\"a\":x", "}\n{\"b\":", "1}\n[", "1]\n{}", "\n"}),
            (Handled{R"({"b":1})", "{}"}));
}

TEST(StdioLoop, HandlesManyLines) {
  Handled expected;
  std::string input;
  for (int i = 0; i < 20000; ++i) {
    expected.push_back(R"({"n":)" + std::to_string(i) + "}");
    input += expected.back() + "\nno JSON\n";
  }
  EXPECT_TRUE(handled(input) == expected);
}

}  // namespace
