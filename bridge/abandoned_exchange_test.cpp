#include <string>

#include "tests/unit/exchange_test.h"

// Exchanges that are still open when their caller's limit is reached.

namespace {

using namespace std::chrono_literals;
using bridge::Outcome;

class AbandonedExchange : public ExchangeTest {
 protected:
  void expectNoReply(std::string_view request = "{}") {
    const Outcome outcome = exchange(1s, request);
    EXPECT_FALSE(outcome.ended);
    EXPECT_FALSE(outcome.reply);
    EXPECT_GE(took, 1s);
  }

  void expectReply(std::string_view to) {
    Outcome outcome = exchange(30s);
    ASSERT_TRUE(outcome.reply);
    EXPECT_EQ(outcome.reply->document()->root().member("to")->string(), to);
  }
};

TEST_F(AbandonedExchange, KeepsItsConnectionOpen) {
  app.script({silence()});
  expectNoReply();
  EXPECT_FALSE(app.waitUntilClosedByServer(0, 300ms));
}

// The test's thread does nothing for the exchange while it waits for the connection to close.
TEST_F(AbandonedExchange, ClosesWhenTheLateReplyArrives) {
  app.script({replyWhenReleased("{}")});
  expectNoReply();
  EXPECT_FALSE(app.waitUntilClosedByServer(0, 300ms));
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(AbandonedExchange, ClosesWhenTheStreamEnds) {
  app.script({[](AppConnection& connection) {
    connection.readRequest();
    connection.waitForRelease();
    connection.halfClose();
  }});
  expectNoReply();
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(AbandonedExchange, ContinuesToSendItsRequest) {
  const std::string request = "[\"" + std::string(20'000'000, 'x') + "\"]";
  app.script({[](AppConnection& connection) {
    connection.waitForRelease();
    connection.readRequest();
    connection.write("{}");
  }});
  expectNoReply(request);
  app.release();
  EXPECT_TRUE(app.waitUntilReceived(0, request.size()));
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(AbandonedExchange, DoesNotAffectTheNext) {
  app.script({replyWhenReleased(R"({"to":"the first"})"), reply(R"({"to":"the second"})")});
  expectNoReply();
  expectReply("the second");
  EXPECT_FALSE(app.record(0).closedByServer);
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(AbandonedExchange, LateReplyDuringTheNextIsDropped) {
  app.script({replyWhenReleased(R"({"to":"the first"})"), [this](AppConnection& connection) {
                connection.readRequest();
                app.release();
                connection.pause(300ms);
                connection.write(R"({"to":"the second"})");
              }});
  expectNoReply();
  expectReply("the second");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(AbandonedExchange, MayBeOneOfMany) {
  app.script({replyWhenReleased("{}"), replyWhenReleased("{}"), replyWhenReleased("{}")});
  for (int i = 0; i < 3; ++i) expectNoReply();
  for (int i = 0; i < 3; ++i) app.release();
  for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(app.waitUntilClosedByServer(i)) << i;
}

}  // namespace
