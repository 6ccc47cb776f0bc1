#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// What counts as a JSON line, seen from outside: a line either gets its method error or
// nothing at all.
class JsonReading : public Conversation {
 protected:
  void everyLineIsDropped(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      say(line);
      EXPECT_TRUE(staysSilent()) << line;
    }
  }

  // The members are put into a request that asks for nothing of them.
  void everyMemberSpoilsItsLine(const std::vector<std::string>& values) {
    for (const std::string& value : values) {
      const std::string line = R"({"id":1,"method":"ping","unused":)" + value + "}";
      say(line);
      EXPECT_TRUE(staysSilent()) << line;
    }
  }
};

TEST_F(JsonReading, LineWithSomethingAfterItsObjectIsDropped) {
  const std::string good = request("ping");
  everyLineIsDropped({good + "}", good + " x", good + good, good + ",", good + "1", good + "\""});
}

TEST_F(JsonReading, UnfinishedObjectIsDropped) {
  everyLineIsDropped({"{", R"({"id":1,"method":"ping")", R"({"id":1,"method":"ping)",
                      R"({"id":1,"method":)", R"({"id":1,"method")", R"({"id":1,)"});
}

TEST_F(JsonReading, MisplacedPunctuationIsDropped) {
  everyLineIsDropped({R"({"id":1,"method":"ping",})", R"({,"id":1,"method":"ping"})",
                      R"({"id" 1,"method":"ping"})", R"({"id":1 "method":"ping"})",
                      R"({"id":1,,"method":"ping"})", R"({id:1,"method":"ping"})",
                      R"({'id':1,'method':'ping'})", R"({1:1,"id":1,"method":"ping"})",
                      R"({"id"::1,"method":"ping"})", R"({"id":1,"method":"ping"])"});
  everyMemberSpoilsItsLine(
      {"[1,]", "[,1]", "[1 2]", "[1}", "{]", "[", "]", "", "[1,,2]", "/*c*/1"});
}

TEST_F(JsonReading, InvalidNumberDropsItsLineThoughNobodyAsksForIt) {
  everyMemberSpoilsItsLine({"01", "01.2.3", "1.", ".5", "-", "+1", "1e", "1e+", "0x10", "1.e3",
                            "-01", "--1", "NaN", "Infinity", "-Infinity", "1_000", "00", "1.2.3"});
}

TEST_F(JsonReading, InvalidLiteralDropsItsLineThoughNobodyAsksForIt) {
  everyMemberSpoilsItsLine({"tru", "True", "nul", "nulll", "falsee", "undefined", "truefalse"});
}

TEST_F(JsonReading, InvalidEscapeDropsItsLineThoughNobodyAsksForIt) {
  everyMemberSpoilsItsLine({R"("\q")", R"("\u12")", R"("\u12g4")", R"("\x41")", R"("\U0041")",
                            R"("\")", R"("\ ")", R"({"\q":1})"});
}

TEST_F(JsonReading, RawControlCharacterInAStringDropsItsLine) {
  everyMemberSpoilsItsLine({"\"a\tb\"", "\"a\x01z\"", "\"a\x1f\"", "\"a\rb\"",
                            std::string("\"a\0b\"", 5), "{\"k\ty\":1}"});
}

TEST_F(JsonReading, ControlCharacterBetweenTokensDropsItsLine) {
  everyMemberSpoilsItsLine({std::string("\0"
                                        "1",
                                        2),
                            "1\x01",
                            "\x0b"
                            "1",
                            "\f1"});
}

TEST_F(JsonReading, ValidOddValuesAreAccepted) {
  for (const std::string value :
       {"-0", "0", "0.0", "1E400", "1e-400", "-1.5E+10", "123456789012345678901234567890",
        R"("\u0000")", R"("\/\b\f\n\r\t\"\\")", "\"\x7f\"", "[]", "{}", "[[],{}]", R"({"":0})"}) {
    say(R"({"unused":)" + value + R"(,"id":1,"method":"ping"})");
    EXPECT_EQ(hear().at("id"), 1) << value;
  }
}

TEST_F(JsonReading, EscapedMemberNamesAreTheSameNames) {
  say(R"({"\u0069d":1,"m\u0065thod":"p\u0069ng"})");
  EXPECT_EQ(hear().at("error").at("message"), "Unknown method ping");
}

TEST_F(JsonReading, MemberNamesAreCaseSensitive) {
  say(R"({"ID":1,"Method":"initialize"})");
  EXPECT_TRUE(staysSilent());
}

TEST_F(JsonReading, LastOfTwoMembersWithTheSameNameCounts) {
  say(R"({"id":1,"method":"initialize","id":2,"m\u0065thod":"ping"})");
  const json reply = hear();
  EXPECT_EQ(reply.at("id"), 2);
  EXPECT_EQ(reply.at("error").at("message"), "Unknown method ping");
}

TEST_F(JsonReading, NestingOfFiveHundredAndTwelveIsAccepted) {
  say(R"({"id":1,"method":"ping","unused":)" + nestedArrays(511) + "}");
  EXPECT_EQ(hear().at("id"), 1);
}

TEST_F(JsonReading, NestingOfFiveHundredAndThirteenIsDropped) {
  everyMemberSpoilsItsLine({nestedArrays(512)});
}

TEST_F(JsonReading, NestingOfAMillionIsDropped) {
  say(R"({"id":1,"method":"ping","unused":)" + nestedArrays(1'000'000) + "}");
  say(R"({"id":1,"method":"ping","unused":)" + std::string(1'000'000, '[') + "}");
  EXPECT_TRUE(staysSilent());
}

TEST_F(JsonReading, LeadingByteOrderMarkIsSkipped) {
  say("\xEF\xBB\xBF" + request("ping", "8"));
  EXPECT_EQ(hear().at("id"), 8);
}

TEST_F(JsonReading, SecondByteOrderMarkDropsTheLine) {
  everyLineIsDropped({"\xEF\xBB\xBF\xEF\xBB\xBF" + request("ping"), "\xEF\xBB\xBF"});
}

TEST_F(JsonReading, InvalidUtf8IsReplacedAndAnswered) {
  say(request("ping\xFF!"));
  EXPECT_EQ(hear().at("error").at("message"), "Unknown method ping\uFFFD!");
}

TEST_F(JsonReading, EachKindOfInvalidUtf8IsReplaced) {
  for (const std::string bad : {"\x80", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC0\xAF",
                                "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFE", "\xF8\x88\x80\x80"}) {
    say(request("<" + bad + ">"));
    std::string message = hear().at("error").at("message");
    EXPECT_TRUE(message.starts_with("Unknown method <\uFFFD")) << message;
    while (message.ends_with("\uFFFD>")) message.erase(message.size() - 4, 3);
    EXPECT_EQ(message, "Unknown method <>");
  }
}

TEST_F(JsonReading, InvalidUtf8OutsideAStringDropsTheLine) {
  everyLineIsDropped({request("ping") + "\xFF", "\xFF" + request("ping")});
}

TEST_F(JsonReading, ValidUtf8OfEveryLengthPassesUnchanged) {
  say(request("é€😀\u007f"));
  EXPECT_TRUE(has(hearLine(), "Unknown method é€😀"));
}

}  // namespace
