#include "json/members.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "json/reader.h"

namespace json {
namespace {

using Order = MemberStack::Order;

/// "name=value" for each member of the object on the stack, in the stack's order.
std::vector<std::string> listed(std::string_view object, Order order) {
  const auto document = read(object);
  if (!document) return {"unreadable"};
  const Value root = document->root();
  MemberStack members(object);
  std::vector<std::string> all;
  for (std::size_t i = members.enter(root.node(), order); i < members.size(); ++i) {
    const Node* const name = members[i].name;
    all.push_back(*root.at(name).string() + '=' + std::string(root.at(name + 1).token()));
  }
  return all;
}

using Listed = std::vector<std::string>;

TEST(MemberStack, KeepsTheOrderGiven) {
  EXPECT_EQ(listed(R"({"b":1,"a":2,"c":3})", Order::asGiven), (Listed{"b=1", "a=2", "c=3"}));
}

TEST(MemberStack, SortsByName) {
  EXPECT_EQ(listed(R"({"b":1,"a":2,"c":3})", Order::byName), (Listed{"a=2", "b=1", "c=3"}));
}

TEST(MemberStack, SortsNamesByTheirBytes) {
  EXPECT_EQ(
      listed("{\"\xC3\xA9\":1,\"z\":2,\"Z\":3,\"\xF0\x9F\x98\x80\":4,\"\":5,\"10\":6,\"9\":7}",
             Order::byName),
      (Listed{"=5", "10=6", "9=7", "Z=3", "z=2", "\xC3\xA9=1", "\xF0\x9F\x98\x80=4"}));
}

TEST(MemberStack, SortsNamesThatAgreeInTheirFirstEightBytes) {
  EXPECT_EQ(listed(R"({"12345678b":1,"12345678":2,"1234567":3,"12345678a":4,"123456789abc":5})",
                   Order::byName),
            (Listed{"1234567=3", "12345678=2", "123456789abc=5", "12345678a=4", "12345678b=1"}));
}

TEST(MemberStack, TellsAShortNameFromOneWithZeroBytesBehindIt) {
  EXPECT_EQ(listed(R"({"a\u0000":1,"a":2,"a\u0000\u0000":3})", Order::byName),
            (Listed{"a=2", std::string("a\0=1", 4), std::string("a\0\0=3", 5)}));
}

TEST(MemberStack, SortsAndComparesEscapedNamesByWhatTheyStandFor) {
  EXPECT_EQ(listed(R"({"\u0062":1,"a":2,"b":3,"\u0041":4})", Order::byName),
            (Listed{"A=4", "a=2", "b=3"}));
}

TEST(MemberStack, TheLastOfANameCounts) {
  EXPECT_EQ(listed(R"({"a":1,"b":2,"a":3,"b":4,"a":5})", Order::byName), (Listed{"a=5", "b=4"}));
  EXPECT_EQ(listed(R"({"a":1,"b":2,"a":3,"c":4})", Order::asGiven), (Listed{"b=2", "a=3", "c=4"}));
}

TEST(MemberStack, OfAnEmptyObjectHoldsNothing) {
  EXPECT_EQ(listed("{}", Order::byName), Listed{});
  EXPECT_EQ(listed("{}", Order::asGiven), Listed{});
}

TEST(MemberStack, PutsTheInnerObjectOnTopOfTheOuter) {
  constexpr std::string_view text = R"({"z":{"b":1,"\u0061":2},"\u0079":3})";
  const auto document = read(text);
  ASSERT_TRUE(document);
  const Value root = document->root();
  MemberStack members(text);
  const std::size_t first = members.enter(root.node(), Order::byName);
  ASSERT_EQ(members.size() - first, 2U);
  const std::size_t inner = members.enter(members[first + 1].name + 1, Order::byName);
  ASSERT_EQ(members.size() - inner, 2U);
  EXPECT_EQ(root.at(members[inner].name).string(), "a");
  EXPECT_EQ(root.at(members[inner + 1].name).string(), "b");
  members.leave(inner);
  ASSERT_EQ(members.size() - first, 2U);
  EXPECT_EQ(root.at(members[first].name).string(), "y");
  EXPECT_EQ(root.at(members[first + 1].name).string(), "z");
}

TEST(MemberStack, ArrangesAnObjectThatIsLikeTheOneBeforeWhateverWasEnteredLast) {
  constexpr std::string_view text =
      R"([{"c":1},{"b":2,"a":3,"b":4},{"b":5,"a":6,"b":7},"and more behind"])";
  const auto document = read(text);
  ASSERT_TRUE(document);
  const Node* const first = document->root().node() + 1;
  const Node* const second = first->next();
  const Node* const third = second->next();
  EXPECT_FALSE(second->isLikeTheOneBefore());
  ASSERT_TRUE(third->isLikeTheOneBefore());

  for (const Node* before : {first, second, third}) {
    MemberStack members(text);
    members.leave(members.enter(before, Order::byName));
    members.enter(third, Order::byName);
    ASSERT_EQ(members.size(), 2U);
    EXPECT_EQ(document->root().at(members[0].name + 1).token(), "6");
    EXPECT_EQ(document->root().at(members[1].name + 1).token(), "7");
  }
}

}  // namespace
}  // namespace json
