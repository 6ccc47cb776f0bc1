#include <csignal>
#include <filesystem>

#include "tests/support/conversation.h"
#include "tests/support/protocol_schema.h"

namespace {

using nlohmann::json;

constexpr std::size_t bigSize = 4'000'000;

// The host closes its end of a pipe.
class HostGone : public Conversation {
 protected:
  // Returns when the server is writing a reply that is bigger than a pipe.
  void startBigReply() {
    sendLine(request(std::string(bigSize, 'q')));
    output = server->readSome(20'000);
    ASSERT_FALSE(output.empty());
  }

  // Returns when the server is waiting for the application's reply.
  void startCall() {
    app.script({succeed(), replyWhenReleased(R"({"ok":true,"result":[1]})")});
    sendLine(toolCall(R"({"name":"read_file"})"));
    ASSERT_TRUE(app.waitUntilReceived(1, 1));
  }

  void expectBrokenPipe() {
    const ExitStatus status = server->waitForExit();
    EXPECT_EQ(status.signal, SIGPIPE);
    EXPECT_EQ(status.code, std::nullopt);
  }

  std::string output;
};

TEST_F(HostGone, OutputClosedWhileIdleEndsTheProcessAtTheNextReply) {
  server->closeOutput();
  sendLine(request("ping"));
  expectBrokenPipe();
}

TEST_F(HostGone, OutputClosedDuringABigReplyEndsTheProcess) {
  startBigReply();
  server->closeOutput();
  expectBrokenPipe();
}

TEST_F(HostGone, OutputClosedDuringACallEndsTheProcessAtTheReply) {
  startCall();
  server->closeOutput();
  app.release();
  expectBrokenPipe();
}

TEST_F(HostGone, BothClosedDuringACallEndTheProcessAtTheReply) {
  startCall();
  server->closeInput();
  server->closeOutput();
  app.release();
  expectBrokenPipe();
}

TEST_F(HostGone, BothClosedDuringABigReplyEndTheProcess) {
  startBigReply();
  server->closeInput();
  server->closeOutput();
  expectBrokenPipe();
}

TEST_F(HostGone, BothClosedWhileIdleGiveStatusZero) {
  sendLine(request("ping"));
  receive();
  server->closeOutput();
  server->closeInput();
  EXPECT_EQ(server->waitForExit().code, 0);
}

TEST_F(HostGone, InputClosedDuringABigReplyDoesNotCutItShort) {
  startBigReply();
  server->closeInput();
  EXPECT_EQ(server->waitForExit().code, 0);
  output += server->unreadOutput();
  ASSERT_TRUE(output.ends_with('\n'));
  EXPECT_EQ(schemaViolation(output), "");
  EXPECT_TRUE(json::parse(output).at("error").at("message") ==
              "Unknown method " + std::string(bigSize, 'q'));
}

TEST_F(HostGone, InputClosedWithinALineGivesNoReply) {
  server->send(R"({"jsonrpc":"2.0","id":1,"meth)");
  expectCleanExit();
}

TEST_F(HostGone, InputClosedWithinALongLineGivesNoReply) {
  server->send(R"({"id":1,"method":"ping","filling":")" + std::string(bigSize, 'x'));
  expectCleanExit();
}

// With SIGPIPE ignored, writing to a broken pipe only fails.
class HostGoneAndSignalsIgnored : public HostGone {
 protected:
  HostGoneAndSignalsIgnored() { setup.signalsBlockedAndIgnored = true; }
};

TEST_F(HostGoneAndSignalsIgnored, RequestsAreStillHandledAfterOutputIsClosed) {
  startBigReply();
  server->closeOutput();
  sendLine(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitForConnections(2));
  server->closeInput();
  EXPECT_EQ(server->waitForExit().code, 0);
}

class HostWithoutOutput : public HostGone {
 protected:
  HostWithoutOutput() { setup.closedStreams = {1}; }
};

TEST_F(HostWithoutOutput, RepliesAreNotWrittenToAConnection) {
  sendLine(toolCall(R"({"name":"x"})"));
  sendLine(toolCall(R"({"name":"y"})"));
  ASSERT_TRUE(app.waitForConnections(4));
  server->closeInput();
  EXPECT_EQ(server->waitForExit().code, 0);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(json::parse(app.record(i).received).size(), 4U) << app.record(i).received;
  }
}

#ifdef __linux__
class HostWithoutErrors : public HostGone {
 protected:
  HostWithoutErrors() { setup.closedStreams = {2}; }
};

TEST_F(HostWithoutErrors, GetsTheNullDevice) {
  sendLine(request("ping"));
  receive();
  const auto errors = "/proc/" + std::to_string(server->pid()) + "/fd/2";
  EXPECT_EQ(std::filesystem::read_symlink(errors), "/dev/null");
}
#endif

class HostWithoutStreams : public HostGone {
 protected:
  HostWithoutStreams() { setup.closedStreams = {0, 1, 2}; }
};

TEST_F(HostWithoutStreams, GivesStatusZero) {
  EXPECT_EQ(server->waitForExit().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

}  // namespace
