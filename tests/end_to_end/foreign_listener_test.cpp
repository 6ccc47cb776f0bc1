#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// Another program listens on the port of an old endpoint file.
class ForeignListener : public LaunchConversation {
 protected:
  void SetUp() override {
    LaunchConversation::SetUp();
    endpointFile.publish(foreign.port());
    launches.script({.publish = EndpointFile::text(app.port(), "fresh")});
  }

  // The server treats the program as the application, because it answers the probe.
  void expectUnreadable(const ScriptedApp::Script& script) {
    foreign.setDefault(script);
    EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
    EXPECT_EQ(foreign.connectionCount(), 2U);
    EXPECT_EQ(launches.count(), 0U);
    endpointFile.publish(app.port());
    EXPECT_EQ(callTool("x").size(), 1U) << "the next call is not affected";
  }

  ScriptedApp foreign;
};

TEST_F(ForeignListener, ThatSendsGarbageIsUnreadable) {
  expectUnreadable(reply(std::string("\x00\xFF{[\"\n", 6)));
}

TEST_F(ForeignListener, ThatIsAWebServerIsUnreadable) {
  expectUnreadable([](AppConnection& connection) {
    connection.readRequest();
    connection.write(
        "HTTP/1.1 400 Bad Request\r\nContent-Type: application/json\r\nContent-Length: 11\r\n"
        "Connection: close\r\n\r\n{\"ok\":true}");
    connection.close();
  });
}

TEST_F(ForeignListener, ThatSendsAGreetingIsUnreadable) {
  expectUnreadable([](AppConnection& connection) {
    connection.write("220 mail.example ready\r\n");
    connection.readRequest();
  });
}

TEST_F(ForeignListener, ThatIsSilentIsReplacedByTheLaunchedApplication) {
  foreign.setDefault(silence());
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_GE(Clock::now() - start, probeLimit);
  EXPECT_EQ(launches.count(), 1U);
  EXPECT_EQ(json::parse(app.record(1).received).at("token"), "fresh");
  for (std::size_t i = 0; i < foreign.connectionCount(); ++i) {
    EXPECT_EQ(json::parse(foreign.record(i).received).at("tool"), "drive_status");
  }
}

TEST_F(ForeignListener, ThatClosesIsReplacedByTheLaunchedApplication) {
  foreign.setDefault(closeUnread());
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_EQ(launches.count(), 1U);
  EXPECT_EQ(json::parse(app.record(1).received).at("token"), "fresh");
}

}  // namespace
