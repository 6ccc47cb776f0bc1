#include <atomic>
#include <thread>
#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// Replies that the application writes at once, and that the server receives in many pieces.
class BigReplies : public Conversation {
 protected:
  static constexpr std::size_t mostBytes = 4'194'304;

  // Text of that many bytes in which no two parts are the same.
  static std::string textOf(std::size_t bytes) {
    std::string text;
    text.reserve(bytes + 20);
    while (text.size() < bytes) text += std::to_string(text.size()) + " ";
    text.resize(bytes);
    return text;
  }

  static std::string replyWith(const std::string& text) {
    return R"({"ok":true,"result":[")" + text + R"("]})";
  }

  // A whole reply of exactly this many bytes.
  static std::string replyOf(std::size_t bytes) {
    return replyWith(textOf(bytes - replyWith("").size()));
  }

  void expectWhole(std::size_t bytes) {
    const std::string text = textOf(bytes - replyWith("").size());
    const json result = callWithReply(replyWith(text));
    ASSERT_FALSE(result.contains("isError")) << result;
    ASSERT_TRUE(result == textResult("[\n  \"" + text + "\"\n]")) << "the text has changed";
  }
};

// Keeps every processor busy.
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

TEST_F(BigReplies, AreReceivedWhole) {
  for (int round = 0; round < 10; ++round) {
    expectWhole(100'000);
    expectWhole(1 << 20);
  }
  for (int round = 0; round < 5; ++round) expectWhole(4'000'000);
}

TEST_F(BigReplies, AreReceivedWholeOnABusyMachine) {
  const BusyProcessors busy;
  for (int round = 0; round < 5; ++round) {
    expectWhole(100'000);
    expectWhole(1 << 20);
    expectWhole(4'000'000);
  }
}

TEST_F(BigReplies, MayHaveFourMebibytes) {
  expectWhole(mostBytes);
}

TEST_F(BigReplies, AreUnreadableWithOneByteMore) {
  EXPECT_EQ(callWithReply(replyOf(mostBytes + 1)), errorResult(unreadableReply));
  EXPECT_TRUE(app.waitUntilClosedByServer(app.connectionCount() - 1));
}

TEST_F(BigReplies, AreUnreadableBeforeTheLimitIfFarTooLong) {
  const auto start = Clock::now();
  app.script({succeed(), reply(replyOf(12'000'000))});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
  EXPECT_LT(Clock::now() - start, callLimit);
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(BigReplies, MayBeFollowedByMoreThanIsRead) {
  EXPECT_FALSE(callWithReply(replyOf(mostBytes) + "   ").contains("isError"));
}

TEST_F(BigReplies, AreUnreadableIfInterruptedByAPause) {
  const std::string text = replyOf(1'000'000);
  app.script({succeed(), replyInTwoParts(text.substr(0, 500'000), text.substr(500'000), 500ms)});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
}

TEST_F(BigReplies, MixedWithSmallOnesAreAllDelivered) {
  for (int round = 0; round < 300; ++round) {
    ASSERT_EQ(callWithReply(R"({"ok":true,"result":[)" + std::to_string(round) + "]}"),
              textResult("[\n  " + std::to_string(round) + "\n]"));
  }
}

}  // namespace
