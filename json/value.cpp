#include "json/value.h"

#include <utf8.h>

#include <charconv>
#include <iterator>
#include <system_error>

#include "json/unescape.h"

namespace json {
namespace {

std::string decode(std::string_view token) {
  std::string decoded;
  decoded.reserve(token.size());
  const char* const end = token.data() + token.size();
  for (const char* at = token.data(); at != end;) {
    if (*at != '\\') {
      decoded += *at++;
      continue;
    }
    const auto [codePoint, length] = readEscape(at, end);
    utf8::unchecked::append(codePoint, std::back_inserter(decoded));
    at += length;
  }
  return decoded;
}

}  // namespace

std::optional<Value> Value::member(std::string_view name) const {
  std::optional<Value> found;
  if (!isObject()) return found;
  const Node* const end = node_->next();
  for (const Node* key = node_ + 1; key != end; key = (key + 1)->next()) {
    const Value given = at(key);
    const bool same = key->hasEscapes() ? given.string() == name : given.token() == name;
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
  return node_->hasEscapes() ? decode(token()) : std::string(token());
}

Value emptyObject() {
  static const Node node(Kind::object, 0);
  return {"{}", &node};
}

}  // namespace json
