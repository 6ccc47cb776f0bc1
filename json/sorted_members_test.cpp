#include "json/sorted_members.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "json/reader.h"

namespace json {
namespace {

using Order = SortedMembers::Order;

/// "name=value" for each member of the object, in the order written.
std::vector<std::string> members(std::string_view object, Order order) {
  const auto document = read(object);
  if (!document) return {"unreadable"};
  const Value root = document->root();
  SortedMembers sorted(object);
  std::vector<std::string> all;
  for (std::size_t i = sorted.enter(root.node(), order); i < sorted.size(); ++i) {
    const Node* const name = sorted[i].name;
    all.push_back(*root.at(name).string() + '=' + std::string(root.at(name + 1).token()));
  }
  return all;
}

using Members = std::vector<std::string>;

TEST(SortedMembers, KeepsTheOrderGiven) {
  EXPECT_EQ(members(R"({"b":1,"a":2,"c":3})", Order::asGiven), (Members{"b=1", "a=2", "c=3"}));
}

TEST(SortedMembers, SortsByName) {
  EXPECT_EQ(members(R"({"b":1,"a":2,"c":3})", Order::byName), (Members{"a=2", "b=1", "c=3"}));
}

TEST(SortedMembers, SortsManyMembersAndKeepsTheLastOfARepeatedName) {
  std::string object = R"({"39":"first")";
  Members given;
  for (int i = 39; i >= 10; --i) {
    object += ",\"" + std::to_string(i) + "\":" + std::to_string(i);
    given.push_back(std::to_string(i) + '=' + std::to_string(i));
  }
  object += '}';
  EXPECT_EQ(members(object, Order::asGiven), given);
  EXPECT_EQ(members(object, Order::byName), Members(given.rbegin(), given.rend()));
}

TEST(SortedMembers, SortsNamesByTheirBytes) {
  EXPECT_EQ(
      members("{\"\xC3\xA9\":1,\"z\":2,\"Z\":3,\"\xF0\x9F\x98\x80\":4,\"\":5,\"10\":6,\"9\":7}",
              Order::byName),
      (Members{"=5", "10=6", "9=7", "Z=3", "z=2", "\xC3\xA9=1", "\xF0\x9F\x98\x80=4"}));
}

TEST(SortedMembers, SortsNamesThatAgreeInTheirFirstEightBytes) {
  EXPECT_EQ(members(R"({"12345678b":1,"12345678":2,"1234567":3,"12345678a":4,"123456789abc":5})",
                    Order::byName),
            (Members{"1234567=3", "12345678=2", "123456789abc=5", "12345678a=4", "12345678b=1"}));
}

TEST(SortedMembers, SortsANameBeforeTheSameNameWithZeroBytes) {
  EXPECT_EQ(members(R"({"a\u0000":1,"a":2,"a\u0000\u0000":3})", Order::byName),
            (Members{"a=2", std::string("a\0=1", 4), std::string("a\0\0=3", 5)}));
}

TEST(SortedMembers, SortsEscapedNamesByTheirCharacters) {
  EXPECT_EQ(members(R"({"\u0062":1,"a":2,"b":3,"\u0041":4})", Order::byName),
            (Members{"A=4", "a=2", "b=3"}));
}

TEST(SortedMembers, KeepsTheLastOfARepeatedName) {
  EXPECT_EQ(members(R"({"a":1,"b":2,"a":3,"b":4,"a":5})", Order::byName), (Members{"a=5", "b=4"}));
  EXPECT_EQ(members(R"({"a":1,"b":2,"a":3,"c":4})", Order::asGiven),
            (Members{"b=2", "a=3", "c=4"}));
}

TEST(SortedMembers, EmptyObjectHasNone) {
  EXPECT_EQ(members("{}", Order::byName), Members{});
  EXPECT_EQ(members("{}", Order::asGiven), Members{});
}

TEST(SortedMembers, InnerObjectIsEnteredAndLeft) {
  constexpr std::string_view text = R"({"z":{"b":1,"\u0061":2},"\u0079":3})";
  const auto document = read(text);
  ASSERT_TRUE(document);
  const Value root = document->root();
  SortedMembers members(text);
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

}  // namespace
}  // namespace json
