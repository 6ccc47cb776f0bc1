#include "json/sorted_members.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <string>

#include "json/value.h"

namespace json {
namespace {

/// The first eight bytes of a name, the first one the highest, padded with zeroes. All bytes before
/// `readableEnd`, which is not before the name's end, can be read.
std::uint64_t firstEightBytes(std::string_view name, const char* readableEnd) {
  std::uint64_t key = 0;
  constexpr std::size_t eight = sizeof key;
  if (readableEnd - name.data() >= static_cast<std::ptrdiff_t>(eight)) {
    std::memcpy(&key, name.data(), eight);  // of a known size, so it is one instruction
  } else {
    std::memcpy(&key, name.data(), name.size());
  }
  if constexpr (std::endian::native == std::endian::little) key = std::byteswap(key);
  if (name.size() >= eight) return key;
  return name.empty() ? 0 : key & ~std::uint64_t{0} << 8 * (eight - name.size());
}

}  // namespace

inline std::uint64_t SortedMembers::keyOf(const Node* name) const {
  if (name->hasEscapes()) return keyOfEscaped(name);
  const std::string_view token(text_.data() + name->begin(), name->length());
  return firstEightBytes(token, text_.data() + text_.size());
}

std::uint64_t SortedMembers::keyOfEscaped(const Node* name) const {
  const std::string decoded = Value(text_, name).string().value_or("");
  return firstEightBytes(decoded, decoded.data() + decoded.size());
}

/// Negative, zero or positive, like std::string_view::compare().
int SortedMembers::compareNames(const Node* a, const Node* b) const {
  const Value nameOfA(text_, a);
  const Value nameOfB(text_, b);
  if (!a->hasEscapes() && !b->hasEscapes()) return nameOfA.token().compare(nameOfB.token());
  return nameOfA.string().value_or("").compare(nameOfB.string().value_or(""));
}

std::size_t SortedMembers::enter(const Node* object, Order order) {
  const std::size_t first = members_.size();
  const Node* const end = object->next();
  for (const Node* name = object + 1; name != end; name = (name + 1)->next()) {
    members_.push_back({.name = name, .key = keyOf(name)});
  }
  const auto begin = members_.begin() + static_cast<std::ptrdiff_t>(first);
  // Of members with the same name the last comes first, so that unique() keeps it.
  std::sort(begin, members_.end(), [this](const Member& a, const Member& b) {
    if (a.key != b.key) return a.key < b.key;  // almost always
    const int names = compareNames(a.name, b.name);
    return names != 0 ? names < 0 : a.name > b.name;
  });
  const auto sameName = [this](const Member& a, const Member& b) {
    return a.key == b.key && compareNames(a.name, b.name) == 0;
  };
  members_.erase(std::unique(begin, members_.end(), sameName), members_.end());
  if (order == Order::asGiven) {
    std::sort(begin, members_.end(),
              [](const Member& a, const Member& b) { return a.name < b.name; });
  }
  return first;
}

}  // namespace json
