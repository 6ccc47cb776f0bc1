#include <atomic>
#include <thread>
#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// Replies that the application writes at once, and that a socket hands over in pieces.
class Delivery : public Conversation {
 protected:
  static constexpr std::size_t most = 4'194'304;

  // That many bytes, no stretch of which is like another.
  static std::string textOf(std::size_t bytes) {
    std::string text;
    text.reserve(bytes + 20);
    while (text.size() < bytes) text += std::to_string(text.size()) + " ";
    text.resize(bytes);
    return text;
  }

  static std::string replyHolding(const std::string& text) {
    return R"({"ok":true,"result":[")" + text + R"("]})";
  }

  // A reply of exactly this many bytes, and one JSON text.
  static std::string replyOf(std::size_t bytes) {
    return replyHolding(textOf(bytes - replyHolding("").size()));
  }

  void arrivesWhole(std::size_t bytes) {
    const std::string text = textOf(bytes - replyHolding("").size());
    const json result = callAnsweredWith(replyHolding(text));
    ASSERT_FALSE(result.contains("isError")) << result;
    ASSERT_TRUE(result == textResult("[\n  \"" + text + "\"\n]")) << "something was changed";
  }
};

// A busy thread for each processor.
class BusyProcessors {
 public:
  BusyProcessors() {
    for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i) {
      threads_.emplace_back([this] {
        while (!done_) ++work_;
      });
    }
  }
  ~BusyProcessors() {
    done_ = true;
    for (std::thread& thread : threads_) thread.join();
  }
  BusyProcessors(const BusyProcessors&) = delete;
  BusyProcessors& operator=(const BusyProcessors&) = delete;

 private:
  std::atomic<bool> done_ = false;
  std::atomic<unsigned long> work_ = 0;
  std::vector<std::thread> threads_;
};

TEST_F(Delivery, HundredKilobytesArriveWhole) {
  for (int round = 0; round < 10; ++round) arrivesWhole(100'000);
}

TEST_F(Delivery, OneMebibyteArrivesWhole) {
  for (int round = 0; round < 10; ++round) arrivesWhole(1 << 20);
}

TEST_F(Delivery, FourMillionBytesArriveWhole) {
  for (int round = 0; round < 5; ++round) arrivesWhole(4'000'000);
}

TEST_F(Delivery, RepliesArriveWholeOnABusyMachine) {
  const BusyProcessors busy;
  for (int round = 0; round < 5; ++round) {
    arrivesWhole(100'000);
    arrivesWhole(1 << 20);
    arrivesWhole(4'000'000);
  }
}

TEST_F(Delivery, LargestReplyArrivesWhole) {
  arrivesWhole(most);
}

TEST_F(Delivery, OneByteMoreIsUnreadable) {
  EXPECT_EQ(callAnsweredWith(replyOf(most + 1)), failure(unreadableReply));
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(Delivery, FarTooLongReplyIsUnreadableAtOnce) {
  const std::string reply = replyOf(12'000'000);
  const auto start = Clock::now();
  EXPECT_EQ(callAnsweredWith(reply), failure(unreadableReply));
  EXPECT_LT(Seconds(Clock::now() - start), Seconds(15));  // not only at the deadline
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(Delivery, BlanksBeyondTheLargestReplyAreNotRead) {
  const std::string text = replyOf(most);
  EXPECT_FALSE(callAnsweredWith(text + "   ").contains("isError"));
}

TEST_F(Delivery, LongReplyCutByAPauseIsUnreadable) {
  const std::string text = replyOf(1'000'000);
  app.script({answer(), replyInTwoParts(text.substr(0, 500'000), text.substr(500'000), 500ms)});
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
}

TEST_F(Delivery, ManyCallsInARowAllArrive) {
  for (int round = 0; round < 300; ++round) {
    ASSERT_EQ(callAnsweredWith(R"({"ok":true,"result":[)" + std::to_string(round) + "]}"),
              textResult("[\n  " + std::to_string(round) + "\n]"));
  }
}

}  // namespace
