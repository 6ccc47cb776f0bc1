#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "json/value.h"

namespace json {

/// A member of an object, with what its place in the order of names is decided by.
struct Member {
  std::uint64_t head;     ///< the first eight bytes of the name, the first one the highest
  std::string_view name;  ///< decoded
  const Node* key;        ///< its value's node is the next one
};

/// The members of objects inside one another, for a walk that goes through all of them.
///
/// Objects are entered and left like brackets; the rooms of one object serve the next, so
/// that a listing of many small objects costs no allocation for each.
class MemberStack {
 public:
  enum class Order : std::uint8_t { asGiven, byName };

  /// Puts the members of an object on the stack, of each name only the last, and returns
  /// the index of the first; size() is the index behind the last.
  std::size_t enter(Value object, Order order);
  void leave(std::size_t first) { members_.resize(first); }

  [[nodiscard]] std::size_t size() const { return members_.size(); }
  [[nodiscard]] const Member& operator[](std::size_t index) const { return members_[index]; }

 private:
  std::vector<Member> members_;
  std::deque<std::string> decoded_;  // names that had escapes; never move
};

}  // namespace json
