#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr std::string_view success = R"({"ok":true,"result":[1]})";
const json one = textResult("[\n  1\n]");

// An application that handles a connection in an unusual way.
class UnusualApplication : public Conversation {
 protected:
  static ScriptedApp::Script replyBeforeReading() {
    return [](AppConnection& connection) {
      connection.write(success);
      connection.readRequest();
    };
  }

  static ScriptedApp::Script replyByteByByte(ScriptedApp::Duration pause) {
    return [pause](AppConnection& connection) {
      connection.readRequest();
      for (const char byte : success) {
        connection.write({&byte, 1});
        connection.pause(pause);
      }
    };
  }

  void expectNextCallSucceeds() {
    app.script({succeed(), succeed("[2]")});
    EXPECT_EQ(callTool("next"), textResult("[\n  2\n]"));
    EXPECT_TRUE(hasNoFurtherReply());
  }
};

TEST_F(UnusualApplication, ThatRepliesBeforeItReads) {
  app.script({replyBeforeReading(), replyBeforeReading()});
  EXPECT_EQ(callTool("x"), one);
  ASSERT_TRUE(app.waitUntilClosedByServer(1));
  EXPECT_EQ(json::parse(app.record(1).received).at("tool"), "x");
  expectNextCallSucceeds();
}

TEST_F(UnusualApplication, ThatRepliesBeforeItReadsALongRequestGetsItWhole) {
  app.script({succeed(), replyBeforeReading()});
  const json arguments = {{"content", std::string(8'000'000, 'y')}};
  EXPECT_EQ(callTool("write_file", arguments), one);
  ASSERT_TRUE(app.waitUntilClosedByServer(1)) << "it stays open until all is read";
  EXPECT_TRUE(json::parse(app.record(1).received).at("arguments") == arguments);
  expectNextCallSucceeds();
}

TEST_F(UnusualApplication, ThatRepliesByteByByte) {
  EXPECT_EQ(callWithScript(replyByteByByte(1ms)), one);
  expectNextCallSucceeds();
}

TEST_F(UnusualApplication, ThatRepliesByteByByteWithLongPausesIsUnreadable) {
  app.script({succeed(), replyByteByByte(500ms)});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
  EXPECT_LT(Clock::now() - start, callLimit);
  expectNextCallSucceeds();
}

TEST_F(UnusualApplication, ThatEndsItsStreamBeforeItReadsIsUnreadable) {
  app.script({succeed(), [](AppConnection& connection) { connection.halfClose(); }});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
  expectNextCallSucceeds();
}

TEST_F(UnusualApplication, ThatEndsAfterItAcceptedTheCallIsUnreadable) {
  app.script({succeed(), [this](AppConnection& connection) {
                app.stopListening();
                connection.reset();
              }});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
  app.listenAgain();
  expectNextCallSucceeds();
}

TEST_F(UnusualApplication, ThatNeverReadsALongRequestGivesNoResponse) {
  app.script({succeed(), [](AppConnection& connection) { connection.waitForRelease(); }});
  const auto start = Clock::now();
  const json arguments = {{"content", std::string(20'000'000, 'y')}};
  EXPECT_EQ(callTool("write_file", arguments), errorResult(noResponse));
  EXPECT_GE(Clock::now() - start, callLimit);
  expectNextCallSucceeds();
}

// The application restarts just after it has answered the probe.
class RestartedApplication : public Conversation {};

TEST_F(RestartedApplication, OnAnotherPortGetsTheNextCall) {
  ScriptedApp restarted;
  app.script({[&](AppConnection& connection) {
    connection.readRequest();
    app.stopListening();
    endpointFile.publish(restarted.port(), "new token");
    connection.write(success);
  }});
  EXPECT_EQ(callTool("missed"), errorResult(noResponse));
  EXPECT_EQ(restarted.connectionCount(), 0U) << "a call uses the endpoint of its probe";
  EXPECT_EQ(callTool("next").size(), 1U);
  ASSERT_EQ(restarted.connectionCount(), 2U);
  EXPECT_EQ(json::parse(restarted.record(1).received).at("tool"), "next");
  EXPECT_EQ(json::parse(restarted.record(1).received).at("token"), "new token");
}

TEST_F(RestartedApplication, WithAnotherTokenGetsItInTheNextCall) {
  app.script({[&](AppConnection& connection) {
                connection.readRequest();
                endpointFile.publish(app.port(), "new token");
                connection.write(success);
              },
              refuse("The token is wrong.")});
  EXPECT_EQ(callTool("refused"), errorResult("The token is wrong."));
  EXPECT_EQ(json::parse(app.record(1).received).at("token"), usualToken);
  EXPECT_EQ(callTool("next").size(), 1U);
  EXPECT_EQ(json::parse(app.record(3).received).at("token"), "new token");
}

}  // namespace
