#include <vector>

#include "tests/support/conversation.h"
#include "tests/support/protocol_schema.h"

namespace {

using nlohmann::json;

// Endpoint files with which a call reaches the application.
class UsableEndpoint : public Conversation {
 protected:
  // The call's request with this file; the probe's has the same version and token.
  json requestWith(const std::string& text) {
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

TEST_F(UsableEndpoint, MembersMayBeInAnyOrderWithOthers) {
  const json sent = requestWith(R"({"port":)" + portText() +
                                R"(,"token":"T","version":1,"more":{"port":[1,{}]}})");
  EXPECT_EQ(sent.at("version"), 1);
  EXPECT_EQ(sent.at("token"), "T");
}

TEST_F(UsableEndpoint, EmptyTokenIsSent) {
  EXPECT_EQ(requestWith(EndpointFile::text(app.port(), "")).at("token"), "");
}

TEST_F(UsableEndpoint, AnyTokenIsSent) {
  const std::string token = "a \"b\" \\ / \n \x01 \u00e9 \U0001F600";
  EXPECT_EQ(requestWith(EndpointFile::text(app.port(), token)).at("token"), token);
}

TEST_F(UsableEndpoint, AnyVersionIsSent) {
  for (const std::int64_t version :
       {std::int64_t{0}, std::int64_t{999}, std::int64_t{-1}, INT64_MAX, INT64_MIN}) {
    EXPECT_EQ(requestWith(EndpointFile::text(app.port(), "T", version)).at("version"), version);
  }
}

TEST_F(UsableEndpoint, LastOfARepeatedMemberCounts) {
  EXPECT_EQ(
      requestWith(R"({"token":"a","port":1,"version":1,"token":"b","port":)" + portText() + "}")
          .at("token"),
      "b");
}

TEST_F(UsableEndpoint, IsReadAgainForEachCall) {
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

TEST_F(UsableEndpoint, MayContainWhiteSpace) {
  EXPECT_EQ(requestWith("\n {\r\n\t\"version\" : 1 , \"port\" : " + portText() +
                        " , \"token\" : \"T\" }\n")
                .at("token"),
            "T");
}

TEST_F(UsableEndpoint, MayBeASymbolicLink) {
  const auto target = home.folder() / "elsewhere.json";
  std::filesystem::rename(endpointFile.path(), target);
  std::filesystem::create_symlink(target, endpointFile.path());
  EXPECT_EQ(callTool("x").size(), 1U);
}

class UnusualHome : public testing::Test {};

TEST_F(UnusualHome, IsUsedUnchanged) {
  const TemporaryHome home("~ a%20b $HOME \u00e9");
  ScriptedApp app;
  EndpointFile(home).publish(app.port());
  ServerProcess server(home);
  server.send(toolCall(R"({"name":"x"})") + "\n");
  EXPECT_EQ(schemaViolation(server.readLine().value()), "");
  EXPECT_EQ(app.connectionCount(), 2U);
}

// Endpoint files with which a call fails. The application cannot be launched.
class UnusableEndpoint : public UnlaunchableConversation {
 protected:
  void expectUnusable(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      endpointFile.write(text);
      EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted)) << text;
    }
    EXPECT_EQ(app.connectionCount(), 0U);
  }

  // The text of a usable file with one value replaced.
  std::string textWith(std::string_view member, std::string_view value) {
    json fields = json::parse(EndpointFile::text(app.port()));
    fields[member] = "REPLACE";
    std::string text = fields.dump();
    return text.replace(text.find("\"REPLACE\""), 9, value);
  }
};

TEST_F(UnusableEndpoint, FileIsMissing) {
  endpointFile.remove();
  EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted));
}

TEST_F(UnusableEndpoint, FolderIsMissing) {
  std::filesystem::remove_all(home.home() / "Library");
  EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted));
}

TEST_F(UnusableEndpoint, FileIsAFolder) {
  endpointFile.remove();
  std::filesystem::create_directory(endpointFile.path());
  EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted));
}

TEST_F(UnusableEndpoint, MemberIsMissing) {
  const std::string port = std::to_string(app.port());
  expectUnusable({R"({"port":)" + port + R"(,"token":"T"})", R"({"version":1,"token":"T"})",
                  R"({"version":1,"port":)" + port + "}"});
}

TEST_F(UnusableEndpoint, MemberHasAnotherType) {
  const std::string quoted = "\"" + std::to_string(app.port()) + "\"";
  expectUnusable({textWith("port", quoted), textWith("port", "null"), textWith("port", "true"),
                  textWith("port", "[8080]"), textWith("version", "\"1\""),
                  textWith("version", "null"), textWith("version", "true"),
                  textWith("version", "{}"), textWith("token", "null"), textWith("token", "5"),
                  textWith("token", "[\"T\"]")});
}

TEST_F(UnusableEndpoint, NumberIsNotASigned64BitInteger) {
  expectUnusable({textWith("port", "8080.5"), textWith("version", "0.1"),
                  textWith("version", "9223372036854775808"),
                  textWith("version", "-9223372036854775809"), textWith("version", "1e400"),
                  textWith("port", "123456789012345678901234567890")});
}

TEST_F(UnusableEndpoint, NameDiffersInLetterCase) {
  const std::string port = std::to_string(app.port());
  expectUnusable({R"({"Version":1,"token":"T","port":)" + port + "}",
                  R"({"version":1,"TOKEN":"T","port":)" + port + "}"});
}

TEST_F(UnusableEndpoint, TextIsNotAnObject) {
  const std::string good = EndpointFile::text(app.port());
  expectUnusable({"{}", "[" + good + "]", "[]", "", " ", "\"text\"", "1", "null", "not JSON"});
}

TEST_F(UnusableEndpoint, TextIsTooShortOrTooLong) {
  const std::string good = EndpointFile::text(app.port());
  expectUnusable(
      {good.substr(0, good.size() - 1), good.substr(0, 5), good + "}", good + good, good + " x"});
}

TEST_F(UnusableEndpoint, FailsBeforeTheLimitWhenOpenCannotBeStarted) {
  endpointFile.remove();
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted));
  EXPECT_LT(Clock::now() - start, startLimit);
  EXPECT_EQ(launches.count(), 0U);
}

}  // namespace
