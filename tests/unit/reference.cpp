#include "tests/unit/reference.h"

#include <array>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <vector>

namespace reference {
namespace {

using nlohmann::json;

constexpr std::size_t deepest = 512;
constexpr unsigned shift = 0x800;  // from the surrogates to the characters in their place

std::string unicodeEscape(unsigned unit) {
  std::array<char, 8> escape{};
  std::snprintf(escape.data(), escape.size(), "\\u%04x", unit);
  return escape.data();
}

/// The unit of the `\uXXXX` at that place, if one stands there.
std::optional<unsigned> unitAt(std::string_view text, std::size_t place) {
  const std::string escape(place < text.size() ? text.substr(place, 6) : "");
  if (escape.size() < 6 || !escape.starts_with("\\u")) return std::nullopt;
  if (escape.find_first_not_of("0123456789abcdefABCDEF", 2) != std::string::npos) {
    return std::nullopt;
  }
  return static_cast<unsigned>(std::stoul(escape.substr(2), nullptr, 16));
}

bool isBetween(std::optional<unsigned> unit, unsigned from, unsigned to) {
  return unit && *unit >= from && *unit <= to;
}

std::string withoutUnpairedSurrogates(std::string text) {
  std::size_t place = text.find('\\');
  while (place < text.size()) {
    const std::optional<unsigned> unit = unitAt(text, place);
    const bool pair =
        isBetween(unit, 0xD800, 0xDBFF) && isBetween(unitAt(text, place + 6), 0xDC00, 0xDFFF);
    if (isBetween(unit, 0xD800, 0xDFFF) && !pair) {
      text.replace(place, 6, unicodeEscape(*unit + shift));
    }
    place = text.find('\\', place + (pair ? 12 : 2));
  }
  return text;
}

/// Builds the tree while the library reads.
class Tree : public nlohmann::json_sax<json> {
 public:
  bool null() override { return put(nullptr); }
  bool boolean(bool value) override { return put(value); }
  // The one integer that comes as a signed one and has no sign of its own is "-0".
  bool number_integer(std::int64_t value) override {
    return put(value == 0 ? "n-0" : "n" + std::to_string(value));
  }
  bool number_unsigned(std::uint64_t value) override { return put("n" + std::to_string(value)); }
  bool number_float(double /*value*/, const std::string& spelling) override {
    return put("n" + spelling);
  }
  bool string(std::string& characters) override { return put("s" + characters); }
  bool binary(json::binary_t& /*value*/) override { return false; }
  bool start_object(std::size_t /*size*/) override { return open(json::object()); }
  bool start_array(std::size_t /*size*/) override { return open(json::array()); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool key(std::string& characters) override {
    name_ = characters;
    return true;
  }
  bool parse_error(std::size_t /*place*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& error) override {
    constexpr int numberTooBig = 406;
    tooBig_ = error.id == numberTooBig;
    return false;
  }

  [[nodiscard]] const json& root() const { return root_; }
  [[nodiscard]] bool tooBig() const { return tooBig_; }

 private:
  json& place(json value) {
    if (open_.empty()) return root_ = std::move(value);
    json& around = *open_.back();
    if (around.is_object()) return around[name_] = std::move(value);
    return around.emplace_back(std::move(value));
  }
  bool put(json value) {
    place(std::move(value));
    return true;
  }
  bool open(json container) {
    open_.push_back(&place(std::move(container)));
    return open_.size() <= deepest;
  }
  bool close() {
    open_.pop_back();
    return true;
  }

  json root_;
  std::vector<json*> open_;
  std::string name_;
  bool tooBig_ = false;
};

bool read(std::string_view text, Tree& tree) {
  return json::sax_parse(withoutUnpairedSurrogates(std::string(text)), &tree);
}

bool beginsContainer(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && (text[first] == '{' || text[first] == '[');
}

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

std::string laidOut(const json& tree, const Style& style) {
  std::string text;
  append(text, tree, style);
  return text;
}

}  // namespace

Verdict verdict(std::string_view text) {
  // A zero byte is an end of input to that library, whatever follows.
  if (!beginsContainer(text) || text.find('\0') != std::string_view::npos) {
    return Verdict::malformed;
  }
  Tree tree;
  if (read(text, tree)) return Verdict::wellFormed;
  return tree.tooBig() ? Verdict::none : Verdict::malformed;
}

bool isTellable(std::string_view text) {
  for (std::size_t place = 0; place < text.size(); ++place) {
    const std::string_view rest = text.substr(place);
    if (rest.size() > 1 && rest[0] == '\xEE' && static_cast<unsigned char>(rest[1]) < 0xA0) {
      return false;
    }
    if (isBetween(unitAt(text, place), 0xE000, 0xE7FF)) return false;
  }
  return true;
}

json tree(std::string_view text) {
  Tree tree;
  if (!read(text, tree)) throw std::invalid_argument("not well-formed: " + std::string(text));
  return tree.root();
}

std::string compact(const json& tree) {
  return laidOut(tree, {.colon = ":", .lineFeed = "", .indent = 0});
}

std::string pretty(const json& tree) {
  return laidOut(tree, {.colon = " : ", .lineFeed = "\n", .indent = 2});
}

std::string literal(const std::string& characters) {
  constexpr bool escapeNonAscii = false;
  std::string spelt;
  const std::string plain = json(characters).dump(-1, ' ', escapeNonAscii);
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(plain[i + k]); };
    if (plain[i] == '/') {
      spelt += "\\/";
    } else if (byte(0) == 0xEE && byte(1) < 0xA0) {  // in the place of a surrogate
      spelt += unicodeEscape((0xE000U | (byte(1) & 0x3FU) << 6U | (byte(2) & 0x3FU)) - shift);
      i += 2;
    } else {
      spelt += plain[i];
    }
  }
  return spelt;
}

}  // namespace reference
