#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "json/node.h"

namespace json {

/// A member of an object.
struct Member {
  const Node* name;   ///< the next node is its value
  std::uint64_t key;  ///< the name's first eight bytes; they compare as the names do
};

/// The members of nested objects, in the order in which they are written.
///
/// Objects are entered and left like brackets. They share one array, so that a listing of many
/// small objects needs no allocation for each.
class SortedMembers {
 public:
  enum class Order : std::uint8_t { asGiven, byName };

  /// `text` is the message that contains the objects.
  explicit SortedMembers(std::string_view text) : text_(text) {}

  /// Adds the members of an object, for a repeated name only the last, and returns the index of
  /// the first; size() is the index after the last.
  std::size_t enter(const Node* object, Order order);

  /// Removes the members from index `first` on.
  void leave(std::size_t first) { members_.resize(first); }

  [[nodiscard]] std::size_t size() const { return members_.size(); }
  [[nodiscard]] const Member& operator[](std::size_t index) const { return members_[index]; }

 private:
  [[nodiscard]] std::uint64_t keyOf(const Node* name) const;
  [[nodiscard]] std::uint64_t keyOfEscaped(const Node* name) const;
  [[nodiscard]] int compareNames(const Node* a, const Node* b) const;

  std::string_view text_;
  std::vector<Member> members_;
};

}  // namespace json
