#pragma once

#include <cstddef>
#include <cstdint>

namespace json {

enum class Kind : std::uint8_t { object, array, string, number, trueLiteral, falseLiteral, null };

/// One value of a message: its kind and its place in the message's text.
///
/// The nodes of a message form one flat array in the order of the text. A container is followed
/// by everything inside it; an object's members are pairs of nodes, name and value.
class Node {
 public:
  Node() = default;
  Node(Kind kind, std::size_t begin) : begin_(begin), packed_(static_cast<std::size_t>(kind)) {}

  [[nodiscard]] Kind kind() const { return static_cast<Kind>(packed_ & kindBits); }
  [[nodiscard]] bool isContainer() const { return kind() <= Kind::array; }

  /// The offset of its token in the text; for a string, of the byte after the opening quote.
  [[nodiscard]] std::size_t begin() const { return begin_; }

  /// Bytes of the token, a string's without its quotes. Not for containers.
  [[nodiscard]] std::size_t length() const { return packed_ >> countShift; }
  void setLength(std::size_t length) { setCount(length); }

  /// How many nodes are inside a container, at all levels. Not for other values.
  [[nodiscard]] std::size_t descendants() const { return packed_ >> countShift; }
  void setDescendants(std::size_t count) { setCount(count); }

  /// Whether a string has escapes. If not, its bytes are its characters.
  [[nodiscard]] bool hasEscapes() const { return (packed_ & escapesBit) != 0; }
  void setHasEscapes() { packed_ |= escapesBit; }

  /// The node after this one and everything inside it.
  [[nodiscard]] const Node* next() const { return this + 1 + (isContainer() ? descendants() : 0); }

 private:
  static constexpr std::size_t kindBits = 7;
  static constexpr std::size_t escapesBit = 8;
  static constexpr unsigned countShift = 4;

  void setCount(std::size_t count) {
    packed_ = (packed_ & (kindBits | escapesBit)) | count << countShift;
  }

  std::size_t begin_;
  std::size_t packed_;
};

}  // namespace json
