#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/unit/connection_box_test.h"

// How long a silence must be to end a reply. Only exchanges in which the application wrote in time
// count, so that a busy machine makes no test fail.

namespace {

using namespace std::chrono_literals;

constexpr std::size_t bigReply = 8192;

/// The start of a JSON message, as many bytes as `size`, and the end of it.
std::string startOf(std::size_t size) {
  return "[\"" + std::string(size - 2, 'x');
}
constexpr const char* closing = "\"]";

class Silence : public NWConnectionBoxTest {
 protected:
  /// How long an exchange takes if the reply stops after these bytes.
  std::chrono::steady_clock::duration timeUntilGivenUp(const std::string& bytes) {
    const auto start = std::chrono::steady_clock::now();
    exchange(::reply(bytes));
    return std::chrono::steady_clock::now() - start;
  }

  /// On a busy machine it can take longer to notice, but not every time.
  bool isGivenUpWithin(std::chrono::milliseconds limit, const std::string& bytes) {
    for (int attempt = 0; attempt < 25; ++attempt) {
      if (timeUntilGivenUp(bytes) < limit) return true;
    }
    return false;
  }
};

TEST_F(Silence, Of30MillisecondsDoesNotEndASmallReply) {
  ASSERT_TRUE(exchangeInTime(replyInTwoParts(startOf(bigReply - 1), closing, 30ms), 45ms));
  EXPECT_TRUE(reply && reply->isWhole());
}

TEST_F(Silence, Of150MillisecondsDoesNotEndABigReply) {
  ASSERT_TRUE(exchangeInTime(replyInTwoParts(startOf(bigReply), closing, 150ms), 240ms));
  EXPECT_TRUE(reply && reply->isWhole());
}

TEST_F(Silence, EndsASmallReplyAfter50Milliseconds) {
  EXPECT_GE(timeUntilGivenUp(startOf(2)), 50ms);
  EXPECT_GE(timeUntilGivenUp(startOf(bigReply - 1)), 50ms);
  EXPECT_TRUE(isGivenUpWithin(75ms, startOf(bigReply - 1)));
}

TEST_F(Silence, EndsABigReplyAfter250Milliseconds) {
  EXPECT_GE(timeUntilGivenUp(startOf(bigReply)), 250ms);
  EXPECT_GE(timeUntilGivenUp(startOf(100'000)), 250ms);
  EXPECT_TRUE(isGivenUpWithin(375ms, startOf(bigReply)));
}

/// A process that is suspended, or waits for a processor, while a reply arrives in pieces.
class SilenceWhileSuspended : public NWConnectionBoxTest {
 protected:
  static constexpr auto longerThanAnySilence = 300ms;

  void openWithReplyIn(const std::vector<std::string>& pieces) {
    app.script({[this, pieces](AppConnection& connection) {
      connection.readRequest();
      for (const std::string& piece : pieces) {
        connection.waitForRelease();
        connection.write(piece);
        ++written;
      }
    }});
    openAndDriveTo(State::receiving);
  }

  /// Lets the application write a piece while the box does nothing.
  void releasePiece() {
    const int before = written;
    app.release();
    while (written == before) std::this_thread::sleep_for(1ms);
  }

  /// Receives the first piece. The second arrives, and the silence ends, before the box continues.
  /// Returns whether the box has finished.
  bool receiveTwoPieces() {
    releasePiece();
    EXPECT_FALSE(sendFor(0ms));
    releasePiece();
    std::this_thread::sleep_for(longerThanAnySilence);
    return sendFor(0ms);
  }

  std::atomic<int> written = 0;
};

TEST_F(SilenceWhileSuspended, CountsAfterTheRestWasReceived) {
  openWithReplyIn({R"({"a":)", "1}"});
  ASSERT_TRUE(receiveTwoPieces());
  reply = box->takeReply();
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(reply->size(), 7U);
}

TEST_F(SilenceWhileSuspended, StartsAgainAfterEachPiece) {
  openWithReplyIn({R"({"a":)", "1"});
  EXPECT_FALSE(receiveTwoPieces());
}

TEST_F(SilenceWhileSuspended, DoesNotHideAReplyThatArrivedBeforeTheDeadline) {
  openWithReplyIn({"{}"});
  releasePiece();
  EXPECT_TRUE(box->send(bridge::UptimeClock::now() - 1s));
  EXPECT_TRUE(box->takeReply());
}

}  // namespace
