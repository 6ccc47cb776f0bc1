#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "common/buffer.h"
#include "json/node.h"

namespace json {

/// A JSON value of a message: a view, cheap to copy, valid as long as the message's text and the
/// Document it belongs to.
class Value {
 public:
  /// `text` is the whole message that contains the node.
  Value(std::string_view text, const Node* node) : text_(text), node_(node) {}

  [[nodiscard]] Kind kind() const { return node_->kind(); }
  [[nodiscard]] bool isObject() const { return kind() == Kind::object; }
  [[nodiscard]] bool isString() const { return kind() == Kind::string; }
  [[nodiscard]] bool isTrue() const { return kind() == Kind::trueLiteral; }

  /// The member with that name, compared exactly; none if it is missing or this is not an object.
  /// If the name is repeated, the last member counts.
  [[nodiscard]] std::optional<Value> member(std::string_view name) const;

  /// The number if it is written as an integer and fits a signed 64-bit integer; otherwise none.
  [[nodiscard]] std::optional<std::int64_t> integer() const;

  /// The decoded string as UTF-8; none if this is not a string. The escape of an unpaired
  /// surrogate, which UTF-8 cannot express, becomes the three bytes of UTF-8's pattern;
  /// appendQuoted() turns them back into the escape.
  [[nodiscard]] std::optional<std::string> string() const;

  /// The text of the token, unchanged; a string's without its quotes.
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

/// A message that was read: its values, which point into the message's text. Does not own the
/// text, which must outlive it and stay where it is.
class Document {
 public:
  /// `nodes` describe the whole text; there is at least the top-level value.
  Document(std::string_view text, common::Buffer<Node> nodes)
      : text_(text), nodes_(std::move(nodes)) {}

  /// The top-level value, an object or an array.
  [[nodiscard]] Value root() const { return {text_, nodes_.data()}; }

 private:
  std::string_view text_;
  common::Buffer<Node> nodes_;
};

/// An object without members, always valid.
Value emptyObject();

}  // namespace json
