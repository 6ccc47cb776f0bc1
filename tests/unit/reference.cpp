#include "tests/unit/reference.h"

#include <optional>
#include <stdexcept>
#include <vector>

namespace reference {
namespace {

using nlohmann::json;

constexpr std::size_t deepest = 512;

/// The unit of the `\uXXXX` at that place; none if there is no such escape.
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

std::string replaceUnpairedSurrogates(std::string text) {
  std::size_t place = text.find('\\');
  while (place < text.size()) {
    const std::optional<unsigned> unit = unitAt(text, place);
    const bool pair =
        isBetween(unit, 0xD800, 0xDBFF) && isBetween(unitAt(text, place + 6), 0xDC00, 0xDFFF);
    if (isBetween(unit, 0xD800, 0xDFFF) && !pair) {
      text[place + 2] = 'e';  // \ud800 becomes \ue000, \udfff becomes \ue7ff
      text[place + 3] = "01234567"[(*unit >> 8U) - 0xD8];
    }
    place = text.find('\\', place + (pair ? 12 : 2));
  }
  return text;
}

/// Builds a tree while the library reads.
class Tree : public nlohmann::json_sax<json> {
 public:
  bool null() override { return put(nullptr); }
  bool boolean(bool value) override { return put(value); }
  // Zero is a signed integer only if it was written as "-0".
  bool number_integer(std::int64_t value) override {
    return put(value == 0 ? "n-0" : "n" + std::to_string(value));
  }
  bool number_unsigned(std::uint64_t value) override { return put("n" + std::to_string(value)); }
  bool number_float(double /*value*/, const std::string& text) override { return put("n" + text); }
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
    json& container = *open_.back();
    if (container.is_object()) return container[name_] = std::move(value);
    return container.emplace_back(std::move(value));
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
  return json::sax_parse(replaceUnpairedSurrogates(std::string(text)), &tree);
}

bool startsWithContainer(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && (text[first] == '{' || text[first] == '[');
}

}  // namespace

Validity validity(std::string_view text) {
  // The library treats a zero byte as the end of the text.
  if (!startsWithContainer(text) || text.find('\0') != std::string_view::npos) {
    return Validity::invalid;
  }
  Tree tree;
  if (read(text, tree)) return Validity::valid;
  return tree.tooBig() ? Validity::unknown : Validity::invalid;
}

bool isUnambiguous(std::string_view text) {
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
  if (!read(text, tree)) throw std::invalid_argument("invalid: " + std::string(text));
  return tree.root();
}

}  // namespace reference
