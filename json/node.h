#pragma once

#include <cstddef>
#include <cstdint>

namespace json {

enum class Kind : std::uint8_t { object, array, string, number, trueLiteral, falseLiteral, null };

/// One value of a message that was read, as a note of where it stands in the message's text.
///
/// The nodes of a message stand in one row in the order of its text: a container is followed
/// by all that is inside it, and an object's members are pairs of nodes, name and value.
class Node {
 public:
  Node() = default;
  Node(Kind kind, std::size_t begin) : begin_(begin), packed_(static_cast<std::size_t>(kind)) {}

  [[nodiscard]] Kind kind() const { return static_cast<Kind>(packed_ & kindBits); }

  /// Where its token begins in the text; for a string, the byte behind the opening quote.
  [[nodiscard]] std::size_t begin() const { return begin_; }

  /// Bytes of the token, a string's without its quotes; for a container, how many nodes are
  /// inside it, at all levels.
  [[nodiscard]] std::size_t extent() const { return packed_ >> extentShift; }
  void setExtent(std::size_t extent) {
    packed_ = (packed_ & (kindBits | markBit)) | extent << extentShift;
  }

  /// Whether a string is clean: it holds no escape, so that its bytes between the quotes are
  /// its characters.
  [[nodiscard]] bool isClean() const { return (packed_ & markBit) != 0; }
  void setClean() { packed_ |= markBit; }

  /// Whether an object is known to be like the one directly before it in its array: with the
  /// same names, in the same order.
  [[nodiscard]] bool isLikeTheOneBefore() const { return (packed_ & markBit) != 0; }
  void setLikeTheOneBefore() { packed_ |= markBit; }

  [[nodiscard]] bool isContainer() const { return kind() <= Kind::array; }

  /// How many nodes it is, with all that is inside it.
  [[nodiscard]] std::size_t span() const { return 1 + (isContainer() ? extent() : 0); }

  /// The node that follows this one and all that is inside it.
  [[nodiscard]] const Node* next() const { return this + span(); }

  /// The same, but for another place in the text.
  [[nodiscard]] Node at(std::size_t begin) const {
    Node node = *this;
    node.begin_ = begin;
    return node;
  }

 private:
  static constexpr std::size_t kindBits = 7;
  static constexpr std::size_t markBit = 8;
  static constexpr unsigned extentShift = 4;

  std::size_t begin_;
  std::size_t packed_;
};

}  // namespace json
