#include <csignal>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr std::size_t big = 4'000'000;

// A host that closes its end of a pipe, whatever the server is about.
class HostGone : public Conversation {
 protected:
  void startBigCall() {
    app.script({answer(), succeed("[\"" + std::string(big, 'q') + "\"]")});
    say(toolCall(R"({"name":"read_file"})"));
  }

  void startHeldCall() {
    app.script({answer(), replyWhenReleased(R"({"ok":true,"result":[1]})")});
    say(toolCall(R"({"name":"read_file"})"));
    ASSERT_TRUE(app.waitUntilReceived(1, 1));
  }

  // How the process ends, which must be at once.
  ExitStatus end() {
    const auto start = Clock::now();
    const ExitStatus status = server->waitForExit();
    EXPECT_LT(Seconds(Clock::now() - start), Seconds(2));
    return status;
  }

  void endsByBrokenPipe() {
    const ExitStatus status = end();
    EXPECT_EQ(status.signal, SIGPIPE);
    EXPECT_EQ(status.code, std::nullopt);
  }
};

TEST_F(HostGone, OutputClosedWhileIdleEndsItAtTheNextReply) {
  server->closeOutput();
  say(request("ping"));
  endsByBrokenPipe();
}

TEST_F(HostGone, OutputClosedDuringABigReplyEndsIt) {
  startBigCall();
  ASSERT_FALSE(server->readSome(20'000).empty());
  server->closeOutput();
  endsByBrokenPipe();
}

TEST_F(HostGone, OutputClosedDuringACallEndsItWithTheReply) {
  startHeldCall();
  server->closeOutput();
  app.release();
  endsByBrokenPipe();
}

TEST_F(HostGone, BothClosedDuringACallEndItWithTheReply) {
  startHeldCall();
  server->closeInput();
  server->closeOutput();
  app.release();
  endsByBrokenPipe();
}

TEST_F(HostGone, BothClosedDuringABigReplyEndIt) {
  startBigCall();
  ASSERT_FALSE(server->readSome(20'000).empty());
  server->closeInput();
  server->closeOutput();
  endsByBrokenPipe();
}

TEST_F(HostGone, BothClosedWhileIdleEndItWithStatusZero) {
  say(request("ping"));
  hear();
  server->closeOutput();
  server->closeInput();
  EXPECT_EQ(end().code, 0);
}

TEST_F(HostGone, InputClosedDuringABigReplyLeavesItWhole) {
  startBigCall();
  std::string heard = server->readSome(20'000);
  server->closeInput();
  EXPECT_EQ(server->waitForExit().code, 0);
  heard += server->unreadOutput();
  ASSERT_TRUE(heard.ends_with('\n'));
  const std::string text = json::parse(heard).at("result").at("content").at(0).at("text");
  EXPECT_TRUE(json::parse(text) == json({std::string(big, 'q')}));
}

TEST_F(HostGone, InputClosedWithinALineIsTheEndOfThatLineAndOfTheProcess) {
  server->send(R"({"jsonrpc":"2.0","id":1,"meth)");
  server->closeInput();
  EXPECT_EQ(end().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

TEST_F(HostGone, InputClosedWithinALongLineIsTheEndOfThatLineAndOfTheProcess) {
  server->send(R"({"id":1,"method":"ping","filling":")" + std::string(big, 'x'));
  server->closeInput();
  EXPECT_EQ(end().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

// Broken pipes are no more than failing writes to such a host's children.
class HostGoneUnderIgnoredSignals : public HostGone {
 protected:
  HostGoneUnderIgnoredSignals() { setup.signalsBlockedAndIgnored = true; }
};

TEST_F(HostGoneUnderIgnoredSignals, OutputClosedDuringABigReplyLeavesTheRestOfTheInput) {
  startBigCall();
  ASSERT_FALSE(server->readSome(20'000).empty());
  server->closeOutput();
  say(toolCall(R"({"name":"unheard"})"));
  ASSERT_TRUE(app.waitForConnections(4)) << "requests are still carried out";
  server->closeInput();
  EXPECT_EQ(end().code, 0);
}

class HostWithoutOutput : public HostGone {
 protected:
  HostWithoutOutput() { setup.closedStreams = {1}; }
};

TEST_F(HostWithoutOutput, RepliesGetIntoNoConnection) {
  say(toolCall(R"({"name":"x"})"));
  say(toolCall(R"({"name":"y"})"));
  ASSERT_TRUE(app.waitForConnections(4));
  server->closeInput();
  EXPECT_EQ(end().code, 0);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(json::parse(app.record(i).received).size(), 4U) << app.record(i).received;
  }
}

class HostWithoutStreams : public HostGone {
 protected:
  HostWithoutStreams() { setup.closedStreams = {0, 1, 2}; }
};

TEST_F(HostWithoutStreams, EndsAtOnceWithStatusZero) {
  EXPECT_EQ(end().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

}  // namespace
