#include <csignal>
#include <thread>

#include "tests/support/conversation.h"
#include "tests/support/protocol_schema.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

class StdioPipes : public Conversation {};

TEST_F(StdioPipes, LineMayArriveInManyPieces) {
  for (const char letter : request("ping", "3") + "\n") {
    server->send(std::string(1, letter));
    std::this_thread::sleep_for(1ms);
  }
  EXPECT_EQ(receive().at("id"), 3);
}

TEST_F(StdioPipes, LineMayHaveTwentyMegabytes) {
  std::string content(20'000'000, ' ');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>('a' + i % 26);
  const json arguments = {{"path", "big.txt"}, {"content", content}};
  EXPECT_EQ(callTool("write_file", arguments).size(), 1U);
  const json received = json::parse(app.record(1).received);
  EXPECT_TRUE(received.at("arguments") == arguments);
}

TEST_F(StdioPipes, StoppedAndContinuedProcessLosesNothing) {
  app.script({succeed(), replyWhenReleased(R"({"ok":true,"result":[1]})")});
  ::kill(server->pid(), SIGSTOP);
  sendLine(toolCall(R"({"name":"read_file"})", "4"));
  ::kill(server->pid(), SIGCONT);
  ASSERT_TRUE(app.waitForConnections(2));
  for (int round = 0; round < 5; ++round) {
    ::kill(server->pid(), SIGSTOP);
    std::this_thread::sleep_for(20ms);
    ::kill(server->pid(), SIGCONT);
    std::this_thread::sleep_for(20ms);
  }
  app.release();
  EXPECT_EQ(receive().at("id"), 4);
  for (int round = 0; round < 5; ++round) {
    ::kill(server->pid(), SIGSTOP);
    ::kill(server->pid(), SIGCONT);
    std::this_thread::sleep_for(20ms);
  }
  sendLine(request("ping", "5"));
  EXPECT_EQ(receive().at("id"), 5);
  expectCleanExit();
}

class CommandLine : public Conversation {
 protected:
  CommandLine() { setup.arguments = {"--help", "--version", "extra"}; }
};

TEST_F(CommandLine, ArgumentsChangeNothing) {
  EXPECT_TRUE(hasNoFurtherReply());
  expectCleanExit();
}

class DatagramOutput : public Conversation {
 protected:
  DatagramOutput() { setup.datagramOutput = true; }
};

TEST_F(DatagramOutput, TextAndLineFeedAreSeparateWrites) {
  sendLine(request("initialize"));
  EXPECT_EQ(schemaViolation(server->readWrite()), "");
  EXPECT_EQ(server->readWrite(), "\n");
}

class NonBlockingPipes : public Conversation {
 protected:
  NonBlockingPipes() { setup.nonBlockingPipes = true; }
};

TEST_F(NonBlockingPipes, SlowReaderGetsABigReplyWhole) {
  const std::string method(4'000'000, 'q');
  sendLine(request(method));
  std::string line;
  while (!line.ends_with('\n')) {
    const std::string some = server->readSome(20'000);
    ASSERT_FALSE(some.empty());
    line += some;
    std::this_thread::sleep_for(1ms);
  }
  EXPECT_EQ(schemaViolation(line), "");
  EXPECT_TRUE(json::parse(line).at("error").at("message") == "Unknown method " + method);
  expectCleanExit();
}

TEST_F(NonBlockingPipes, WaitForInput) {
  const std::string line = request("ping", "1") + "\n";
  std::this_thread::sleep_for(500ms);
  server->send(line.substr(0, 10));
  std::this_thread::sleep_for(500ms);
  server->send(line.substr(10));
  EXPECT_EQ(receive().at("id"), 1);
  expectCleanExit();
}

TEST_F(NonBlockingPipes, WaitingForInputUsesNoProcessorTime) {
  sendLine(request("ping"));
  receive();
  std::this_thread::sleep_for(5s);
  server->closeInput();
  EXPECT_LT(server->waitForExit().processorTime, Seconds(0.5));
}

}  // namespace
