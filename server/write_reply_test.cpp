#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <ctime>
#include <string>
#include <thread>

#include "server/server.h"
#include "tests/unit/pipe.h"
#include "tests/unit/standard_output.h"

namespace {

using namespace std::chrono_literals;

/// Writes the reply to the pipe and returns what a reader gets who sleeps first.
std::string written(Pipe& pipe, const std::string& reply, std::chrono::milliseconds readerSleeps) {
  std::string all;
  std::thread reader([&] {
    std::this_thread::sleep_for(readerSleeps);
    all = readToTheEnd(pipe.readEnd());
  });
  {
    const StandardOutput output(pipe.writeEnd());
    server::writeReply(reply);
  }
  pipe.closeWriteEnd();
  reader.join();
  return all;
}

void makeNonBlocking(int descriptor) {
  fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

TEST(WriteReply, EndsTheReplyWithALineFeed) {
  Pipe pipe;
  EXPECT_EQ(written(pipe, R"({"a":1})", 0ms), "{\"a\":1}\n");
}

// Each write to a datagram socket is a message.
TEST(WriteReply, WritesTheTextAndTheLineFeedSeparately) {
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);
  {
    const StandardOutput output(ends[1]);
    server::writeReply(R"({"a":1})");
  }
  std::array<char, 100> message{};
  EXPECT_EQ(recv(ends[0], message.data(), message.size(), MSG_DONTWAIT), 7);
  EXPECT_STREQ(message.data(), R"({"a":1})");
  EXPECT_EQ(recv(ends[0], message.data(), message.size(), MSG_DONTWAIT), 1);
  EXPECT_EQ(message[0], '\n');
  EXPECT_EQ(recv(ends[0], message.data(), message.size(), MSG_DONTWAIT), -1);
  close(ends[0]);
  close(ends[1]);
}

TEST(WriteReply, WritesMoreThanAPipeHolds) {
  Pipe pipe;
  const std::string reply(5'000'000, 'x');
  EXPECT_TRUE(written(pipe, reply, 50ms) == reply + '\n');
}

TEST(WriteReply, WaitsForANonBlockingPipe) {
  Pipe pipe;
  makeNonBlocking(pipe.writeEnd());
  const std::string reply(5'000'000, 'x');
  EXPECT_TRUE(written(pipe, reply, 100ms) == reply + '\n');
}

TEST(WriteReply, WaitingUsesNoProcessorTime) {
  Pipe pipe;
  makeNonBlocking(pipe.writeEnd());
  const std::clock_t before = std::clock();
  written(pipe, std::string(100'000, 'x'), 2s);
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC);
}

TEST(WriteReply, ContinuesAfterASignal) {
  struct sigaction interrupting{};
  interrupting.sa_handler = [](int) {};
  struct sigaction before{};
  sigaction(SIGUSR1, &interrupting, &before);
  Pipe pipe;
  std::thread interrupter([writing = pthread_self()] {
    for (int i = 0; i < 5; ++i) {
      std::this_thread::sleep_for(20ms);
      pthread_kill(writing, SIGUSR1);
    }
  });
  const std::string reply(1'000'000, 'x');
  EXPECT_TRUE(written(pipe, reply, 200ms) == reply + '\n');
  interrupter.join();
  sigaction(SIGUSR1, &before, nullptr);
}

TEST(WriteReply, ReturnsWhenTheOtherEndIsClosed) {
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  Pipe pipe;
  pipe.closeReadEnd();
  {
    const StandardOutput output(pipe.writeEnd());
    server::writeReply(std::string(1'000'000, 'x'));
  }
  std::signal(SIGPIPE, before);
}

}  // namespace
