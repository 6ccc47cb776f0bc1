#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// A file that is usable: the call arrives.
class UsableEndpoint : public Conversation {
 protected:
  // What the probe and the call say with this file.
  json requestUnder(const std::string& text) {
    endpointFile.write(text);
    const std::size_t before = app.connectionCount();
    callTool("x");
    const json probe = json::parse(app.record(before).received);
    const json call = json::parse(app.record(before + 1).received);
    EXPECT_EQ(probe.at("version"), call.at("version"));
    EXPECT_EQ(probe.at("token"), call.at("token"));
    return call;
  }

  std::string portText() const { return std::to_string(app.port()); }
};

TEST_F(UsableEndpoint, MembersInAnyOrderAndFurtherOnesAreFine) {
  const json sent = requestUnder(R"({"port":)" + portText() +
                                 R"(,"token":"T","version":1,"more":{"port":[1,{}]}})");
  EXPECT_EQ(sent.at("version"), 1);
  EXPECT_EQ(sent.at("token"), "T");
}

TEST_F(UsableEndpoint, EmptyTokenIsPassedOn) {
  EXPECT_EQ(requestUnder(EndpointFile::text(app.port(), "")).at("token"), "");
}

TEST_F(UsableEndpoint, TokenIsPassedOnWhateverItHolds) {
  const std::string token = "a \"b\" \\ / \n \x01 \u00e9 \U0001F600";
  EXPECT_EQ(requestUnder(EndpointFile::text(app.port(), token)).at("token"), token);
}

TEST_F(UsableEndpoint, AnyVersionIsPassedOn) {
  for (const std::int64_t version :
       {std::int64_t{0}, std::int64_t{999}, std::int64_t{-1}, INT64_MAX, INT64_MIN}) {
    EXPECT_EQ(requestUnder(EndpointFile::text(app.port(), "T", version)).at("version"), version);
  }
}

TEST_F(UsableEndpoint, LastOfTwoMembersWithTheSameNameCounts) {
  EXPECT_EQ(
      requestUnder(R"({"token":"a","port":1,"version":1,"token":"b","port":)" + portText() + "}")
          .at("token"),
      "b");
}

TEST_F(UsableEndpoint, IsReadAfreshForEachCall) {
  ScriptedApp other;
  callTool("first");
  endpointFile.publish(other.port(), "new token", 2);
  callTool("second");
  EXPECT_EQ(app.connectionCount(), 2U);
  ASSERT_EQ(other.connectionCount(), 2U);
  const json sent = json::parse(other.record(1).received);
  EXPECT_EQ(sent.at("token"), "new token");
  EXPECT_EQ(sent.at("version"), 2);
}

TEST_F(UsableEndpoint, BlanksAndLineBreaksAreFine) {
  EXPECT_EQ(requestUnder("\n {\r\n\t\"version\" : 1 , \"port\" : " + portText() +
                         " , \"token\" : \"T\" }\n")
                .at("token"),
            "T");
}

TEST_F(UsableEndpoint, MayBeALink) {
  const auto target = home.folder() / "elsewhere.json";
  std::filesystem::rename(endpointFile.path(), target);
  std::filesystem::create_symlink(target, endpointFile.path());
  EXPECT_EQ(callTool("x").size(), 1U);
}

class OddHome : public testing::Test {};

TEST_F(OddHome, IsTakenAsItStands) {
  const TemporaryHome home("~ a%20b $HOME \u00e9");
  ScriptedApp app;
  EndpointFile(home).publish(app.port());
  ServerProcess server(home);
  server.send(toolCall(R"({"name":"x"})") + "\n");
  ASSERT_TRUE(server.readLine().has_value());
  EXPECT_EQ(app.connectionCount(), 2U);
}

// A file that is no endpoint: the call fails without a probe, since nothing can be launched.
class NoEndpoint : public UnlaunchableConversation {
 protected:
  void everyTextIsNone(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      endpointFile.write(text);
      EXPECT_EQ(callTool("x"), failure(couldNotBeStarted)) << text;
    }
    EXPECT_EQ(app.connectionCount(), 0U);
  }

  // The usable text with one member's value replaced.
  std::string textWith(std::string_view member, std::string_view value) {
    json fields = json::parse(EndpointFile::text(app.port()));
    fields[member] = "REPLACE";
    std::string text = fields.dump();
    return text.replace(text.find("\"REPLACE\""), 9, value);
  }
};

TEST_F(NoEndpoint, WithoutAFile) {
  endpointFile.remove();
  EXPECT_EQ(callTool("x"), failure(couldNotBeStarted));
}

TEST_F(NoEndpoint, WithoutTheFolder) {
  std::filesystem::remove_all(home.home() / "Library");
  EXPECT_EQ(callTool("x"), failure(couldNotBeStarted));
}

TEST_F(NoEndpoint, WhereAFolderStandsInsteadOfTheFile) {
  endpointFile.remove();
  std::filesystem::create_directory(endpointFile.path());
  EXPECT_EQ(callTool("x"), failure(couldNotBeStarted));
}

TEST_F(NoEndpoint, WhenAMemberIsMissing) {
  const std::string port = std::to_string(app.port());
  everyTextIsNone({R"({"port":)" + port + R"(,"token":"T"})", R"({"version":1,"token":"T"})",
                   R"({"version":1,"port":)" + port + "}"});
}

TEST_F(NoEndpoint, WhenAMemberHasAnotherType) {
  const std::string quoted = "\"" + std::to_string(app.port()) + "\"";
  everyTextIsNone({textWith("port", quoted), textWith("port", "null"), textWith("port", "true"),
                   textWith("port", "[8080]"), textWith("version", "\"1\""),
                   textWith("version", "null"), textWith("version", "true"),
                   textWith("version", "{}"), textWith("token", "null"), textWith("token", "5"),
                   textWith("token", "[\"T\"]")});
}

TEST_F(NoEndpoint, WhenANumberIsNoSigned64BitInteger) {
  everyTextIsNone({textWith("port", "8080.5"), textWith("version", "0.1"),
                   textWith("version", "9223372036854775808"),
                   textWith("version", "-9223372036854775809"), textWith("version", "1e400"),
                   textWith("port", "123456789012345678901234567890")});
}

TEST_F(NoEndpoint, WhenNamesDifferInLetterCase) {
  const std::string port = std::to_string(app.port());
  everyTextIsNone({R"({"Version":1,"token":"T","port":)" + port + "}",
                   R"({"version":1,"TOKEN":"T","port":)" + port + "}"});
}

TEST_F(NoEndpoint, WhenTheTextIsNoObject) {
  const std::string good = EndpointFile::text(app.port());
  everyTextIsNone({"{}", "[" + good + "]", "[]", "", " ", "\"text\"", "1", "null", "not JSON"});
}

TEST_F(NoEndpoint, WhenTheTextIsCutShortOrTooLong) {
  const std::string good = EndpointFile::text(app.port());
  everyTextIsNone(
      {good.substr(0, good.size() - 1), good.substr(0, 5), good + "}", good + good, good + " x"});
}

TEST_F(NoEndpoint, SaysSoAtOnceWhenOpenCannotBeStarted) {
  endpointFile.remove();
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x"), failure(couldNotBeStarted));
  EXPECT_LT(Seconds(Clock::now() - start), Seconds(2));
  EXPECT_EQ(launches.count(), 0U);
}

}  // namespace
