#include "json/members.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace json {
namespace {

std::uint64_t headOf(std::string_view name) {
  std::uint64_t head = 0;
  std::memcpy(&head, name.data(), std::min(name.size(), sizeof head));
  return std::endian::native == std::endian::little ? std::byteswap(head) : head;
}

bool sameName(const Member& a, const Member& b) {
  return a.head == b.head && a.name == b.name;
}

/// By name, and the last given first where a name is given twice.
bool comesBefore(const Member& a, const Member& b) {
  if (a.head != b.head) return a.head < b.head;
  const int order = a.name.compare(b.name);
  return order != 0 ? order < 0 : a.key > b.key;
}

}  // namespace

std::size_t MemberStack::enter(Value object, Order order) {
  const std::size_t first = members_.size();
  const Node* const end = object.node()->next();
  for (const Node* key = object.node() + 1; key != end; key = (key + 1)->next()) {
    const Value written(object.text(), key);
    const std::string_view name =
        key->isClean() ? written.token() : decoded_.emplace_back(*written.string());
    members_.push_back({headOf(name), name, key});
  }
  const auto begin = members_.begin() + static_cast<std::ptrdiff_t>(first);
  std::sort(begin, members_.end(), comesBefore);
  members_.erase(std::unique(begin, members_.end(), sameName), members_.end());
  if (order == Order::asGiven) {
    std::sort(begin, members_.end(),
              [](const Member& a, const Member& b) { return a.key < b.key; });
  }
  return first;
}

}  // namespace json
