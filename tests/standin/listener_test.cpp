#include "standin/listener.h"

#include <gtest/gtest.h>

#include <deque>
#include <future>
#include <thread>

#include "tests/standin/loopback_client.h"

namespace {

using Listener = standin::Listener;

std::string echo(std::string_view request) {
  return std::string(request);
}

TEST(Listener, AnswersOneRequestAndWaitsForTheClientToClose) {
  const Listener listener(echo);
  LoopbackClient client(listener.port());
  client.send(R"({"a":1})");
  EXPECT_EQ(client.receiveReply(), R"({"a":1})");
  EXPECT_FALSE(client.isClosedWithin(1));
}

TEST(Listener, ClosesIfTheClientDoesNot) {
  const Listener listener(echo);
  LoopbackClient client(listener.port());
  client.send("{}");
  EXPECT_EQ(client.receiveReply(), "{}");
  EXPECT_TRUE(client.isClosedWithin(15));
}

TEST(Listener, RequestMayArriveInPieces) {
  const Listener listener(echo);
  LoopbackClient client(listener.port());
  for (const char* piece : {"{", "\"a\"", ":\"", "}\\", "\"", "\"", "}"}) {
    client.send(piece);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));  // so that they arrive apart
  }
  EXPECT_EQ(client.receiveReply(), R"({"a":"}\""})");
}

TEST(Listener, RequestOfManyMegabytesArrivesWhole) {
  const Listener listener(
      [](std::string_view request) { return "[" + std::to_string(request.size()) + "]"; });
  const std::string request = R"({"a":")" + std::string(30'000'000, 'q') + R"("})";
  LoopbackClient client(listener.port());
  client.send(request);
  EXPECT_EQ(client.receiveReply(), "[" + std::to_string(request.size()) + "]");
}

TEST(Listener, ReplyOfFourMebibytesArrivesWhole) {
  std::string reply = "[\"" + std::string(4194300, 'q') + "\"]";
  const Listener listener([&](std::string_view) { return reply; });
  LoopbackClient client(listener.port());
  client.send("{}");
  EXPECT_TRUE(client.receiveReply() == reply);
}

TEST(Listener, ServesOthersWhileClientsAreIdle) {
  const Listener listener(echo);
  std::deque<LoopbackClient> idle;
  for (int i = 0; i < 50; ++i) idle.emplace_back(listener.port()).send("{\"unfinished");
  LoopbackClient client(listener.port());
  client.send("{}");
  EXPECT_EQ(client.receiveReply(), "{}");
}

TEST(Listener, ServesOthersWhileACallTakesLong) {
  std::promise<void> finish;
  auto finished = finish.get_future().share();
  const Listener listener([finished](std::string_view request) {
    if (request == R"({"slow":1})") finished.wait();
    return std::string(request);
  });
  LoopbackClient slow(listener.port());
  slow.send(R"({"slow":1})");
  LoopbackClient quick(listener.port());
  quick.send("{}");
  EXPECT_EQ(quick.receiveReply(), "{}");
  finish.set_value();
  EXPECT_EQ(slow.receiveReply(), R"({"slow":1})");
}

TEST(Listener, SurvivesClientsThatLeaveEarly) {
  const Listener listener(echo);
  for (int i = 0; i < 20; ++i) {
    LoopbackClient client(listener.port());
    client.send(i % 2 == 0 ? "{\"unfinished" : "{}");
  }
  LoopbackClient client(listener.port());
  client.send("{}");
  EXPECT_EQ(client.receiveReply(), "{}");
}

TEST(Listener, EndsWhileClientsAreConnected) {
  std::deque<LoopbackClient> clients;
  {
    const Listener listener(echo);
    clients.emplace_back(listener.port());
    clients.emplace_back(listener.port()).send("{\"unfinished");
    clients.emplace_back(listener.port()).send("{}");
    EXPECT_EQ(clients.back().receiveReply(), "{}");
  }
  for (LoopbackClient& client : clients) EXPECT_TRUE(client.isClosedWithin(10));
}

}  // namespace
