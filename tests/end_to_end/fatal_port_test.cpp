#include <csignal>

#include "tests/support/conversation.h"

namespace {

// A port outside 0 to 65535 ends the process silently, before it connects to anything.
class FatalPort : public LaunchConversation {
 protected:
  void expectAbort() {
    const ExitStatus status = server->waitForExit();
    EXPECT_EQ(status.signal, SIGABRT);
    EXPECT_EQ(status.code, std::nullopt);
    EXPECT_EQ(server->unreadOutput(), "");
    EXPECT_EQ(app.connectionCount(), 0U);
  }

  void expectFatal(std::string_view port) {
    endpointFile.write(R"({"version":1,"token":"T","port":)" + std::string(port) + "}");
    sendLine(request("ping"));
    EXPECT_EQ(receive().at("id"), 1) << "the file is not read without a tool call";
    sendLine(toolCall(R"({"name":"x"})"));
    expectAbort();
    EXPECT_EQ(launches.count(), 0U);
  }
};

TEST_F(FatalPort, OneAboveTheLast) {
  expectFatal("65536");
}
TEST_F(FatalPort, MinusOne) {
  expectFatal("-1");
}
TEST_F(FatalPort, SeventyThousand) {
  expectFatal("70000");
}
TEST_F(FatalPort, LargestInteger) {
  expectFatal("9223372036854775807");
}
TEST_F(FatalPort, SmallestInteger) {
  expectFatal("-9223372036854775808");
}

TEST_F(FatalPort, WithTheApplicationsPortInItsLow16Bits) {
  expectFatal(std::to_string(app.port() + 65536));
}

TEST_F(FatalPort, PublishedByTheLaunchedApplication) {
  launches.script({.publish = EndpointFile::text(70000)});
  sendLine(toolCall(R"({"name":"x"})"));
  expectAbort();
  EXPECT_EQ(launches.count(), 1U);
}

}  // namespace
