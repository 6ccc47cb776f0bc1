#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "json/node.h"

namespace json {

/// A member of an object, with what mostly decides its place in the order of names.
struct Member {
  const Node* name;    ///< its value's node is the next one
  std::size_t place;   ///< among the members of its object as given
  std::uint64_t head;  ///< the first eight bytes of the name, the first one the highest
};

/// The members of objects inside one another, for a walk that goes through all of them.
///
/// Objects are entered and left like brackets; the room of one object serves the next, so
/// that a listing of many small objects costs no allocation for each. Nor does it cost a sort
/// for each, if one is like the other.
class MemberStack {
 public:
  enum class Order : std::uint8_t { asGiven, byName };

  /// `text` is the message that all the objects are in.
  explicit MemberStack(std::string_view text) : text_(text) {}

  /// Puts the members of an object on the stack, of each name only the last, and returns
  /// the index of the first; size() is the index behind the last.
  std::size_t enter(const Node* object, Order order);
  void leave(std::size_t first) {
    members_.resize(first);
    --depth_;
  }

  [[nodiscard]] std::size_t size() const { return members_.size(); }
  [[nodiscard]] const Member& operator[](std::size_t index) const { return members_[index]; }

 private:
  /// Where the members of an object stand in its order.
  struct Arrangement {
    const Node* object = nullptr;
    std::size_t count = 0;           ///< of those that count
    std::vector<std::size_t> ranks;  ///< of each as given, its place among them, or `dropped`
  };
  static constexpr std::size_t dropped = ~std::size_t{0};

  void arrangeAs(const Arrangement& before, const Node* object);
  void collect(const Node* object);
  void arrange(std::size_t first, Order order);
  [[nodiscard]] std::uint64_t headOf(const Node* name) const;
  [[nodiscard]] int compareNames(const Node* a, const Node* b) const;

  std::string_view text_;
  std::vector<Member> members_;
  std::vector<Arrangement> arrangements_;  // of the last object at each depth
  std::size_t depth_ = 0;
};

}  // namespace json
