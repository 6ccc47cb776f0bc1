#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// Some other program listens on the port of an endpoint file that was left behind.
class ForeignListener : public LaunchConversation {
 protected:
  void SetUp() override {
    LaunchConversation::SetUp();
    endpointFile.publish(foreign.port());
    launches.script({.publish = EndpointFile::text(app.port(), "fresh")});
  }

  // A program that always says this is taken for the application, and understood by nobody.
  void isUnreadable(const ScriptedApp::Script& script) {
    foreign.otherwise(script);
    EXPECT_EQ(callTool("x"), failure(unreadableReply));
    EXPECT_EQ(foreign.connectionCount(), 2U);
    EXPECT_EQ(launches.count(), 0U);
    endpointFile.publish(app.port());
    EXPECT_EQ(callTool("x").size(), 1U) << "it harms no later call";
  }

  ScriptedApp foreign;
};

TEST_F(ForeignListener, ThatTalksGarbageIsUnreadable) {
  isUnreadable(reply(std::string("\x00\xFF{[\"\n", 6)));
}

TEST_F(ForeignListener, ThatIsAWebServerIsUnreadable) {
  isUnreadable([](AppConnection& connection) {
    connection.readRequest();
    connection.write(
        "HTTP/1.1 400 Bad Request\r\nContent-Type: application/json\r\nContent-Length: 11\r\n"
        "Connection: close\r\n\r\n{\"ok\":true}");
    connection.hangUp();
  });
}

TEST_F(ForeignListener, ThatGreetsFirstIsUnreadable) {
  isUnreadable([](AppConnection& connection) {
    connection.write("220 mail.example ready\r\n");
    connection.readRequest();
  });
}

TEST_F(ForeignListener, ThatSaysNothingIsPassedOverForTheLaunchedApplication) {
  foreign.otherwise(silence());
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_GE(Seconds(Clock::now() - start), Seconds(3));
  EXPECT_EQ(launches.count(), 1U);
  EXPECT_EQ(json::parse(app.record(1).received).at("token"), "fresh");
  for (std::size_t i = 0; i < foreign.connectionCount(); ++i) {
    EXPECT_EQ(json::parse(foreign.record(i).received).at("tool"), "drive_status");
  }
}

TEST_F(ForeignListener, ThatHangsUpIsPassedOverForTheLaunchedApplication) {
  foreign.otherwise(hangUp());
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_EQ(launches.count(), 1U);
  EXPECT_EQ(json::parse(app.record(1).received).at("token"), "fresh");
}

}  // namespace
