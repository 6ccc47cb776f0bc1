#include <csignal>

#include "tests/support/conversation.h"

namespace {

// A port outside 0 to 65535 ends the process, without a word, before anything is connected.
class FatalPort : public LaunchConversation {
 protected:
  void endsTheProcess() {
    const ExitStatus status = server->waitForExit();
    EXPECT_EQ(status.signal, SIGABRT);
    EXPECT_EQ(status.code, std::nullopt);
    EXPECT_EQ(server->unreadOutput(), "");
    EXPECT_EQ(app.connectionCount(), 0U);
  }

  void isFatal(std::string_view port) {
    endpointFile.write(R"({"version":1,"token":"T","port":)" + std::string(port) + "}");
    say(request("ping"));
    EXPECT_EQ(hear().at("id"), 1) << "the file alone harms nothing";
    say(toolCall(R"({"name":"x"})"));
    endsTheProcess();
    EXPECT_EQ(launches.count(), 0U);
  }
};

TEST_F(FatalPort, OneBeyondTheLast) {
  isFatal("65536");
}
TEST_F(FatalPort, Negative) {
  isFatal("-1");
}
TEST_F(FatalPort, SeventyThousand) {
  isFatal("70000");
}
TEST_F(FatalPort, LargestInteger) {
  isFatal("9223372036854775807");
}
TEST_F(FatalPort, SmallestInteger) {
  isFatal("-9223372036854775808");
}

TEST_F(FatalPort, ThatWouldBeTheApplicationsIfCutTo16Bits) {
  isFatal(std::to_string(app.port() + 65536));
}

TEST_F(FatalPort, PublishedAfterTheLaunch) {
  launches.script({.publish = EndpointFile::text(70000)});
  say(toolCall(R"({"name":"x"})"));
  endsTheProcess();
  EXPECT_EQ(launches.count(), 1U);
}

}  // namespace
