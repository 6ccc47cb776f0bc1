#include "json/value.h"

#include <algorithm>
#include <charconv>

#include "json/escape.h"
#include "json/text.h"
#include "json/utf8.h"

namespace json {
namespace {

std::string decode(std::string_view token) {
  Text decoded;
  const char* from = token.data();
  const char* const end = from + token.size();
  while (from != end) {
    const char* const escape = std::find(from, end, '\\');
    decoded.append({from, escape});
    from = escape;
    if (from == end) break;
    const auto [codePoint, length] = readEscape(from, end);
    char* const to = decoded.room(4);
    decoded.commit(static_cast<std::size_t>(writeUtf8(to, codePoint) - to));
    from += length;
  }
  return std::string(decoded.view());
}

}  // namespace

std::optional<Value> Value::member(std::string_view name) const {
  std::optional<Value> found;
  if (!isObject()) return found;
  const Node* const end = node_->next();
  for (const Node* key = node_ + 1; key != end; key = (key + 1)->next()) {
    const Value given = at(key);
    const bool same = key->isClean() ? given.token() == name : given.string() == name;
    if (same) found = at(key + 1);
  }
  return found;
}

std::optional<std::int64_t> Value::integer() const {
  if (kind() != Kind::number) return std::nullopt;
  const std::string_view digits = token();
  std::int64_t integer = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), integer);
  if (error != std::errc() || stop != digits.data() + digits.size()) return std::nullopt;
  return integer;
}

std::optional<std::string> Value::string() const {
  if (!isString()) return std::nullopt;
  return node_->isClean() ? std::string(token()) : decode(token());
}

Value emptyObject() {
  static const Node node(Kind::object, 0);
  return {"{}", &node};
}

}  // namespace json
