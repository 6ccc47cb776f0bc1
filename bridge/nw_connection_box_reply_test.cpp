#include <string>

#include "tests/unit/connection_box_test.h"
#include "tests/unit/reply_of.h"

// Where a reply ends.

namespace {

using namespace std::chrono_literals;
using bridge::Reply;

constexpr auto silenceInABigReply = 250ms;

using NWConnectionBoxReply = NWConnectionBoxTest;

TEST_F(NWConnectionBoxReply, NeedNotBeJson) {
  exchange(::reply("x"));
  ASSERT_TRUE(reply);
  EXPECT_FALSE(reply->isWhole());
  EXPECT_EQ(reply->size(), 1U);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBoxReply, WrittenAtOnceIsReceivedWhole) {
  for (const std::size_t size : {8188UZ, 8189UZ, 16384UZ, 3'000'000UZ}) {
    const std::string text = "[\"" + std::string(size, 'x') + "\"]";
    ASSERT_TRUE(exchangeInTime(::reply(text), silenceInABigReply));
    ASSERT_TRUE(reply && reply->isWhole()) << size;
    EXPECT_EQ(reply->size(), text.size());
  }
}

TEST_F(NWConnectionBoxReply, EndsAtALongSilence) {
  exchange(replyInTwoParts("{\"ok\":", "true}", 1s));
  ASSERT_TRUE(reply);
  EXPECT_FALSE(reply->isWhole());
  EXPECT_EQ(reply->size(), 6U);
}

TEST_F(NWConnectionBoxReply, EndsWithoutSilenceAfterAWholeMessage) {
  exchange([](AppConnection& connection) {
    connection.readRequest();
    connection.write("{}");
    connection.writeUntilClosed(" ", 5ms);
  });
  EXPECT_TRUE(reply && reply->isWhole());
}

TEST_F(NWConnectionBoxReply, ContainsBytesOfTheSameWriteAfterAWholeMessage) {
  const std::string text = "{}" + std::string(40'000, ' ') + "x";
  exchange(::reply(text));
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->size(), text.size());
  EXPECT_FALSE(reply->isWhole());
}

TEST_F(NWConnectionBoxReply, OfTheGreatestSizeIsWhole) {
  const std::string text = "[\"" + std::string(Reply::mostBytes - 4, 'x') + "\"]";
  ASSERT_EQ(text.size(), 4194304U);
  ASSERT_TRUE(exchangeInTime(::reply(text), silenceInABigReply));
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(reply->left(), 0U);
}

TEST_F(NWConnectionBoxReply, OfTheGreatestSizeMayEndInALateByte) {
  const std::string text = "[\"" + std::string(Reply::mostBytes - 4, 'x') + "\"";
  ASSERT_TRUE(exchangeInTime(replyInTwoParts(text, "]", 100ms), silenceInABigReply));
  EXPECT_TRUE(reply && reply->isWhole());
}

TEST_F(NWConnectionBoxReply, LongerThanTheGreatestSizeIsCut) {
  const std::string text = "[\"" + std::string(Reply::mostBytes - 3, 'x') + "\"]";
  ASSERT_TRUE(exchangeInTime(::reply(text), silenceInABigReply));
  ASSERT_TRUE(reply);
  EXPECT_FALSE(reply->isWhole());
  EXPECT_EQ(reply->left(), 0U);
}

TEST_F(NWConnectionBoxReply, MuchLongerThanTheGreatestSizeIsCut) {
  const std::string text(3 * Reply::mostBytes, ' ');
  ASSERT_TRUE(exchangeInTime(::reply(text), silenceInABigReply));
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->left(), 0U);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBoxReply, EndsAtTheEndOfTheStream) {
  exchange(replyAndHalfClose("{\"ok\":"));
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->size(), 6U);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST(Reply, CanBeReadAfterItsBytesHaveMoved) {
  const std::string value(8000, 'x');
  Reply reply = replyOf(R"({"member":")" + value + R"("})");
  reply.room(reply.left());  // too much to be added in place
  const auto document = reply.document();
  ASSERT_TRUE(document);
  const auto member = document->root().member("member");
  ASSERT_TRUE(member);
  EXPECT_TRUE(member->string() == value);
}

}  // namespace
