#include "json/members.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "json/value.h"

namespace json {
namespace {

/// The first eight of the `size` bytes at `from`, zeroes for those that are not there.
/// `readable` is where the memory ends that may be looked at.
std::uint64_t firstEightBytes(const char* from, std::size_t size, const char* readable) {
  constexpr std::size_t eight = sizeof(std::uint64_t);
  std::uint64_t head = 0;
  const bool inOneGo = readable - from >= static_cast<std::ptrdiff_t>(eight);
  std::memcpy(&head, from, inOneGo ? eight : std::min(size, eight));
  if constexpr (std::endian::native == std::endian::little) head = std::byteswap(head);
  if (size >= eight) return head;
  return size == 0 ? 0 : head & ~std::uint64_t{0} << 8 * (eight - size);
}

/// Sorts a few in place by insertion, which is what most objects have; std::sort calls memmove
/// for each, which costs more than all the rest.
void sortByInsertionIfFew(auto begin, auto end, auto comesBefore) {
  constexpr std::ptrdiff_t few = 16;
  if (end - begin > few) return std::sort(begin, end, comesBefore);
  for (auto next = begin; next != end; ++next) {
    const auto item = *next;
    auto place = next;
    for (; place != begin && comesBefore(item, *(place - 1)); --place) *place = *(place - 1);
    *place = item;
  }
}

}  // namespace

std::uint64_t MemberStack::headOf(const Node* name) const {
  if (name->isClean()) {
    return firstEightBytes(text_.data() + name->begin(), name->extent(),
                           text_.data() + text_.size());
  }
  const std::string decoded = Value(text_, name).string().value_or("");
  return firstEightBytes(decoded.data(), decoded.size(), decoded.data() + decoded.size());
}

/// Below, at or above 0.
int MemberStack::compareNames(const Node* a, const Node* b) const {
  const Value nameOfA(text_, a);
  const Value nameOfB(text_, b);
  if (a->isClean() && b->isClean()) return nameOfA.token().compare(nameOfB.token());
  return nameOfA.string().value_or("").compare(nameOfB.string().value_or(""));
}

std::size_t MemberStack::enter(const Node* object, Order order) {
  const std::size_t first = members_.size();
  if (arrangements_.size() == depth_) arrangements_.emplace_back();
  Arrangement& last = arrangements_[depth_++];
  if (object->isLikeTheOneBefore() && last.object != nullptr && last.object->next() == object) {
    arrangeAs(last, object);
  } else {
    collect(object);
    const std::size_t given = size() - first;
    arrange(first, order);
    last.count = size() - first;
    last.ranks.assign(given, dropped);
    for (std::size_t i = first; i < size(); ++i) last.ranks[members_[i].place] = i - first;
  }
  last.object = object;
  return first;
}

/// What `before` says of the object before holds for this one, too.
void MemberStack::arrangeAs(const Arrangement& before, const Node* object) {
  const std::size_t first = members_.size();
  members_.resize(first + before.count);
  const Node* name = object + 1;
  for (const std::size_t rank : before.ranks) {
    if (rank != dropped) members_[first + rank].name = name;
    name = (name + 1)->next();
  }
}

void MemberStack::collect(const Node* object) {
  const std::size_t first = members_.size();
  const Node* const end = object->next();
  for (const Node* name = object + 1; name != end; name = (name + 1)->next()) {
    members_.push_back({.name = name, .place = members_.size() - first, .head = headOf(name)});
  }
}

/// Puts the members from that index on in order, and of each name keeps only the last.
void MemberStack::arrange(std::size_t first, Order order) {
  const auto begin = members_.begin() + static_cast<std::ptrdiff_t>(first);
  // Nearly always the heads tell. Where a name is given twice, the last one comes first.
  sortByInsertionIfFew(begin, members_.end(), [this](const Member& a, const Member& b) {
    if (a.head != b.head) return a.head < b.head;
    const int names = compareNames(a.name, b.name);
    return names != 0 ? names < 0 : a.place > b.place;
  });
  const auto sameName = [this](const Member& a, const Member& b) {
    return a.head == b.head && compareNames(a.name, b.name) == 0;
  };
  members_.erase(std::unique(begin, members_.end(), sameName), members_.end());
  if (order == Order::asGiven) {
    std::sort(begin, members_.end(),
              [](const Member& a, const Member& b) { return a.place < b.place; });
  }
}

}  // namespace json
