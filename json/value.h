#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "common/buffer.h"
#include "json/node.h"

namespace json {

/// A JSON value inside a message that was read: a view, cheap to copy, valid as long as the
/// message's text and the Document that it came from.
class Value {
 public:
  /// `text` is the whole message that the node is of.
  Value(std::string_view text, const Node* node) : text_(text), node_(node) {}

  [[nodiscard]] Kind kind() const { return node_->kind(); }
  [[nodiscard]] bool isObject() const { return kind() == Kind::object; }
  [[nodiscard]] bool isString() const { return kind() == Kind::string; }
  [[nodiscard]] bool isTrue() const { return kind() == Kind::trueLiteral; }

  /// The member of that name, compared exactly; none if there is none or this is no object.
  /// Of a name given twice, the last one counts.
  [[nodiscard]] std::optional<Value> member(std::string_view name) const;

  /// A number written as an integer that fits 64 bits with its sign; otherwise none.
  [[nodiscard]] std::optional<std::int64_t> integer() const;

  /// The characters of a string; none if this is no string. An unpaired surrogate escape,
  /// which UTF-8 can't express, comes out as the three bytes that UTF-8's pattern would give
  /// it, and appendQuoted() turns these into the escape again.
  [[nodiscard]] std::optional<std::string> string() const;

  /// The text of the token: a string's without its quotes and as it was written.
  [[nodiscard]] std::string_view token() const {
    return text_.substr(node_->begin(), node_->length());
  }

  /// A value of the same message.
  [[nodiscard]] Value at(const Node* node) const { return {text_, node}; }

  [[nodiscard]] const Node* node() const { return node_; }
  [[nodiscard]] std::string_view text() const { return text_; }

 private:
  std::string_view text_;
  const Node* node_;
};

/// A message that was read: its values, which point into the message's text. The text is not
/// owned; whoever holds a Document keeps the text alive and in its place.
class Document {
 public:
  /// `nodes` are of the whole of `text` and hold at least the top-level value.
  Document(std::string_view text, common::Buffer<Node> nodes)
      : text_(text), nodes_(std::move(nodes)) {}

  /// The top-level value, an object or an array.
  [[nodiscard]] Value root() const { return {text_, nodes_.data()}; }

 private:
  std::string_view text_;
  common::Buffer<Node> nodes_;
};

/// An object without members, for ever.
Value emptyObject();

}  // namespace json
