#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr std::string_view success = R"({"ok":true,"result":[1]})";
const json one = textResult("[\n  1\n]");

// An application with its own idea of an exchange.
class OddApplication : public Conversation {
 protected:
  static ScriptedApp::Script answersFirst() {
    return [](AppConnection& connection) {
      connection.write(success);
      connection.readRequest();
    };
  }

  // The reply, byte by byte, with a pause after each.
  static ScriptedApp::Script dribbles(ScriptedApp::Duration pause) {
    return [pause](AppConnection& connection) {
      connection.readRequest();
      for (const char byte : success) {
        connection.write({&byte, 1});
        connection.pause(pause);
      }
    };
  }

  void nextCallIsFine() {
    app.script({answer(), succeed("[2]")});
    EXPECT_EQ(callTool("next"), textResult("[\n  2\n]"));
    EXPECT_TRUE(staysSilent());
  }
};

TEST_F(OddApplication, ThatAnswersBeforeItReadsIsUnderstood) {
  app.script({answersFirst(), answersFirst()});
  EXPECT_EQ(callTool("x"), one);
  ASSERT_TRUE(app.waitUntilClosedByServer(1));
  EXPECT_EQ(json::parse(app.record(1).received).at("tool"), "x");
  nextCallIsFine();
}

TEST_F(OddApplication, ThatAnswersBeforeItReadsALongRequestGetsItWhole) {
  app.script({answer(), answersFirst()});
  const json arguments = {{"content", std::string(8'000'000, 'y')}};
  EXPECT_EQ(callTool("write_file", arguments, 28s), one);
  ASSERT_TRUE(app.waitUntilClosedByServer(1)) << "what was sent is still read";
  EXPECT_TRUE(json::parse(app.record(1).received).at("arguments") == arguments);
  nextCallIsFine();
}

TEST_F(OddApplication, ThatDribblesItsReplyIsUnderstood) {
  app.script({answer(), dribbles(1ms)});
  EXPECT_EQ(callTool("x"), one);
  nextCallIsFine();
}

TEST_F(OddApplication, ThatDribblesItsReplyWithPausesIsUnreadableAtOnce) {
  app.script({answer(), dribbles(500ms)});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
  EXPECT_LT(Seconds(Clock::now() - start), Seconds(3));
  nextCallIsFine();
}

TEST_F(OddApplication, ThatEndsItsStreamBeforeItReadsIsUnreadable) {
  app.script({answer(), [](AppConnection& connection) { connection.halfClose(); }});
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
  nextCallIsFine();
}

TEST_F(OddApplication, ThatAcceptsTheCallAndDiesIsUnreadable) {
  app.script({answer(), [this](AppConnection& connection) {
                app.stopListening();
                connection.reset();
              }});
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
  app.listenAgain();
  nextCallIsFine();
}

TEST_F(OddApplication, ThatNeverReadsALongRequestGivesNoResponse) {
  app.script({answer(), [](AppConnection& connection) { connection.waitForRelease(); }});
  const auto start = Clock::now();
  const json arguments = {{"content", std::string(20'000'000, 'y')}};
  EXPECT_EQ(callTool("write_file", arguments, 40s), failure(noResponse));
  EXPECT_GE(Seconds(Clock::now() - start), Seconds(30));
  nextCallIsFine();
}

// It restarts just when the probe has been answered.
class RestartedApplication : public Conversation {};

TEST_F(RestartedApplication, OnAnotherPortMissesThisCallAndGetsTheNext) {
  ScriptedApp restarted;
  app.script({[&](AppConnection& connection) {
    connection.readRequest();
    app.stopListening();
    endpointFile.publish(restarted.port(), "new token");
    connection.write(success);
  }});
  EXPECT_EQ(callTool("missed", json::object(), 36s), failure(noResponse));
  EXPECT_EQ(restarted.connectionCount(), 0U) << "a call goes where its probe was answered";
  EXPECT_EQ(callTool("next").size(), 1U);
  ASSERT_EQ(restarted.connectionCount(), 2U);
  EXPECT_EQ(json::parse(restarted.record(1).received).at("tool"), "next");
  EXPECT_EQ(json::parse(restarted.record(1).received).at("token"), "new token");
}

TEST_F(RestartedApplication, WithAnotherTokenRefusesThisCallAndTakesTheNext) {
  app.script({[&](AppConnection& connection) {
                connection.readRequest();
                endpointFile.publish(app.port(), "new token");
                connection.write(success);
              },
              refuse("The token is wrong.")});
  EXPECT_EQ(callTool("refused"), failure("The token is wrong."));
  EXPECT_EQ(json::parse(app.record(1).received).at("token"), usualToken);
  EXPECT_EQ(callTool("next").size(), 1U);
  EXPECT_EQ(json::parse(app.record(3).received).at("token"), "new token");
}

}  // namespace
