#include "standin/listener.h"

#include <gtest/gtest.h>

#include <deque>
#include <future>
#include <optional>
#include <thread>

#include "tests/standin/loopback_client.h"

namespace {

// A listener whose answers the test decides, running until the test ends.
class Listener : public testing::Test {
 protected:
  ~Listener() override {
    context_.stop();
    if (thread_.joinable()) thread_.join();
  }

  void serve(standin::Answer answer) {
    listener_.emplace(context_, std::move(answer));
    thread_ = std::thread([this] { standin::runOnThreads(context_); });
  }
  std::uint16_t port() const { return listener_->port(); }

 private:
  asio::io_context context_;
  std::optional<standin::Listener> listener_;
  std::thread thread_;
};

std::string echo(std::string_view request) {
  return std::string(request);
}

TEST_F(Listener, AnswersOneRequestAndWaitsForTheClientToClose) {
  serve(echo);
  LoopbackClient client(port());
  client.send(R"({"a":1})");
  EXPECT_EQ(client.receiveReply(), R"({"a":1})");
  EXPECT_FALSE(client.isClosedWithin(1));
}

TEST_F(Listener, ClosesByItselfWhenTheClientDoesNot) {
  serve(echo);
  LoopbackClient client(port());
  client.send("{}");
  EXPECT_EQ(client.receiveReply(), "{}");
  EXPECT_TRUE(client.isClosedWithin(15));
}

TEST_F(Listener, RequestMayArriveInPieces) {
  serve(echo);
  LoopbackClient client(port());
  for (const char* piece : {"{", "\"a\"", ":\"", "}\\", "\"", "\"", "}"}) {
    client.send(piece);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));  // so that they arrive apart
  }
  EXPECT_EQ(client.receiveReply(), R"({"a":"}\""})");
}

TEST_F(Listener, RequestOfManyMegabytesArrivesWhole) {
  serve([](std::string_view request) { return "[" + std::to_string(request.size()) + "]"; });
  const std::string request = R"({"a":")" + std::string(30'000'000, 'q') + R"("})";
  LoopbackClient client(port());
  client.send(request);
  EXPECT_EQ(client.receiveReply(), "[" + std::to_string(request.size()) + "]");
}

TEST_F(Listener, ReplyOfFourMebibytesArrivesWhole) {
  const std::string reply = "\"" + std::string(4194302, 'q') + "\"";
  serve([&](std::string_view) { return std::string(reply); });
  LoopbackClient client(port());
  client.send("{}");
  EXPECT_TRUE(client.receiveReply() == reply);
}

TEST_F(Listener, IdleClientsHoldUpNobody) {
  serve(echo);
  std::deque<LoopbackClient> idle;
  for (int i = 0; i < 50; ++i) idle.emplace_back(port()).send("{\"unfinished");
  LoopbackClient client(port());
  client.send("{}");
  EXPECT_EQ(client.receiveReply(), "{}");
}

TEST_F(Listener, LongCallHoldsUpNobody) {
  std::promise<void> finish;
  auto finished = finish.get_future().share();
  serve([finished](std::string_view request) {
    if (request == R"({"slow":1})") finished.wait();
    return std::string(request);
  });
  LoopbackClient slow(port());
  slow.send(R"({"slow":1})");
  LoopbackClient quick(port());
  quick.send("{}");
  EXPECT_EQ(quick.receiveReply(), "{}");
  finish.set_value();
  EXPECT_EQ(slow.receiveReply(), R"({"slow":1})");
}

TEST_F(Listener, ClientThatLeavesEarlyDoesNoHarm) {
  serve(echo);
  for (int i = 0; i < 20; ++i) {
    LoopbackClient client(port());
    client.send(i % 2 == 0 ? "{\"unfinished" : "{}");
  }
  LoopbackClient client(port());
  client.send("{}");
  EXPECT_EQ(client.receiveReply(), "{}");
}

}  // namespace
