#include <array>
#include <cstdio>

#include "tests/unit/reference.h"

namespace reference {
namespace {

using nlohmann::json;

struct Style {
  std::string_view colon;
  std::string_view lineFeed;
  std::size_t indent;
};

void append(std::string& text, const json& tree, const Style& style, std::size_t level = 0) {
  if (tree.is_string()) {
    const auto& tagged = tree.get_ref<const std::string&>();
    text += tagged.front() == 's' ? literal(tagged.substr(1)) : tagged.substr(1);
    return;
  }
  if (!tree.is_structured() || tree.empty()) {
    text += tree.dump();
    return;
  }
  text += tree.is_object() ? '{' : '[';
  const std::size_t first = text.size();
  for (const auto& [name, value] : tree.items()) {
    if (text.size() > first) text += ',';
    text.append(style.lineFeed).append(style.indent * (level + 1), ' ');
    if (tree.is_object()) text.append(literal(name)).append(style.colon);
    append(text, value, style, level + 1);
  }
  text.append(style.lineFeed).append(style.indent * level, ' ');
  text += tree.is_object() ? '}' : ']';
}

std::string write(const json& tree, const Style& style) {
  std::string text;
  append(text, tree, style);
  return text;
}

/// The escape of the surrogate that was replaced by a character with these second and third bytes.
std::string surrogateEscape(unsigned second, unsigned third) {
  const unsigned character = 0xE000U | (second & 0x3FU) << 6U | (third & 0x3FU);
  std::array<char, 8> escape{};
  std::snprintf(escape.data(), escape.size(), "\\u%04x", character - 0x800);
  return escape.data();
}

}  // namespace

std::string compact(const json& tree) {
  return write(tree, {.colon = ":", .lineFeed = "", .indent = 0});
}

std::string pretty(const json& tree) {
  return write(tree, {.colon = " : ", .lineFeed = "\n", .indent = 2});
}

std::string literal(const std::string& characters) {
  constexpr bool escapeNonAscii = false;
  std::string written;
  const std::string plain = json(characters).dump(-1, ' ', escapeNonAscii);
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(plain[i + k]); };
    if (plain[i] == '/') {
      written += "\\/";
    } else if (byte(0) == 0xEE && byte(1) < 0xA0) {  // replaces a surrogate
      written += surrogateEscape(byte(1), byte(2));
      i += 2;
    } else {
      written += plain[i];
    }
  }
  return written;
}

}  // namespace reference
