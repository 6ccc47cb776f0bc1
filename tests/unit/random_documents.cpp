#include "tests/unit/random_documents.h"

#include <array>
#include <iterator>

#include "json/reader.h"

std::string RandomDocuments::next(std::size_t size) {
  text_.clear();
  left_ = below(size) + 1;
  if (oneIn(20)) text_ += "\xEF\xBB\xBF";
  whiteSpace();
  container(1);
  whiteSpace();
  return text_;
}

std::string RandomDocuments::changed(std::string document) {
  static constexpr std::string_view structural =
      "{}[]:,\"\\/ \t\n\r0123456789+-.eEutrfalsn\x80\xC3\xED";
  const std::size_t place = below(document.size());
  const char byte = oneIn(4) ? static_cast<char>(below(256)) : structural[below(structural.size())];
  switch (below(3)) {
    case 0: document[place] = byte; break;
    case 1: document.erase(place, 1); break;
    default: document.insert(place, 1, byte);
  }
  return document;
}

void RandomDocuments::value(std::size_t depth) {
  static constexpr std::array<std::string_view, 3> literals{"true", "false", "null"};
  if (left_ > 0) --left_;
  whiteSpace();
  switch (below(8)) {
    case 0:
    case 1: depth < json::deepestNesting ? container(depth + 1) : number(); break;
    case 2:
    case 3:
    case 4: string(); break;
    case 5:
    case 6: number(); break;
    default: text_ += literals[below(literals.size())];
  }
  whiteSpace();
}

void RandomDocuments::container(std::size_t depth) {
  if (depth == 1 && oneIn(50)) return deepContainers();
  return oneIn(2) ? object(depth) : array(depth);
}

void RandomDocuments::object(std::size_t depth) {
  text_ += '{';
  whiteSpace();
  const std::size_t first = text_.size();
  for (std::size_t members = below(6); members > 0 && left_ > 0; --members) {
    if (text_.size() > first) text_ += ',';
    whiteSpace();
    name();
    whiteSpace();
    text_ += ':';
    value(depth);
  }
  text_ += '}';
}

void RandomDocuments::array(std::size_t depth) {
  text_ += '[';
  whiteSpace();
  bool first = true;
  for (std::size_t elements = below(6); elements > 0 && left_ > 0; --elements) {
    if (!first) text_ += ',';
    first = false;
    value(depth);
  }
  text_ += ']';
}

/// Containers inside each other, up to the deepest allowed.
void RandomDocuments::deepContainers() {
  const std::size_t depth = oneIn(3) ? json::deepestNesting : 1 + below(json::deepestNesting);
  std::string ends;
  for (std::size_t level = 1; level < depth; ++level) {
    const bool inObject = oneIn(2);
    text_ += inObject ? '{' : '[';
    if (inObject) name();
    if (inObject) text_ += ':';
    ends.insert(ends.begin(), inObject ? '}' : ']');
  }
  object(json::deepestNesting);
  text_ += ends;
}

void RandomDocuments::name() {
  static constexpr std::array<std::string_view, 12> known{R"("a")",
                                                          R"("b")",
                                                          R"("\u0061")",
                                                          R"("")",
                                                          R"("prefixes")",
                                                          R"("prefixes ")",
                                                          R"("prefixes/a")",
                                                          R"("prefixes\/b")",
                                                          R"("prefix\u00e9")",
                                                          "\"prefix\xC3\xA9\"",
                                                          R"("a\u0000")",
                                                          R"("\ud800")"};
  if (oneIn(4)) return string();
  text_ += known[below(known.size())];
}

void RandomDocuments::string() {
  text_ += '"';
  const std::size_t length = oneIn(10) ? below(100) : below(6);
  for (std::size_t i = 0; i < length; ++i) character();
  text_ += '"';
}

void RandomDocuments::character() {
  static constexpr std::array<std::string_view, 9> raw{"/",
                                                       "\x7F",
                                                       "\xC2\x80",
                                                       "\xC3\xA9",
                                                       "\xE2\x82\xAC",
                                                       "\xED\x9F\xBF",
                                                       "\xEE\xA0\x80",
                                                       "\xEF\xBF\xBF",
                                                       "\xF0\x9F\x98\x80"};
  static constexpr std::array<std::string_view, 8> escapes{"\\\"", "\\\\", "\\/", "\\b",
                                                           "\\f",  "\\n",  "\\r", "\\t"};
  const auto unit = static_cast<unsigned>(below(0x10000));
  switch (below(10)) {
    case 0: text_.append(below(40), 'x'); break;
    case 1: text_ += raw[below(raw.size())]; break;
    case 2:
    case 3: text_ += escapes[below(escapes.size())]; break;
    case 4: unicodeEscape(unit & 0x7FU); break;
    case 5: unicodeEscape(unit); break;
    case 6:  // a pair of surrogates, or half of one
      unicodeEscape(0xD800 | (unit & 0x3FFU));
      if (!oneIn(8)) unicodeEscape(0xDC00 | unit >> 6U);
      break;
    default: text_ += static_cast<char>('a' + below(26));
  }
}

void RandomDocuments::unicodeEscape(unsigned unit) {
  static constexpr std::string_view digits = "0123456789abcdef0123456789ABCDEF";
  if (unit >= 0xE000 && unit < 0xE800) unit += 0x800;
  text_ += "\\u";
  for (const unsigned shift : {12U, 8U, 4U, 0U}) {
    text_ += digits[(unit >> shift & 0xFU) + (oneIn(2) ? 16 : 0)];
  }
}

void RandomDocuments::number() {
  static constexpr std::array<std::string_view, 24> unusual{"0",
                                                            "-0",
                                                            "0.0",
                                                            "-0.0",
                                                            "0e0",
                                                            "-0E-0",
                                                            "1.0",
                                                            "1.50",
                                                            "1e5",
                                                            "1E5",
                                                            "1e+05",
                                                            "1E-07",
                                                            "0.1e1",
                                                            "1e308",
                                                            "1e-400",
                                                            "-1.7976931348623157e308",
                                                            "9007199254740993",
                                                            "9223372036854775807",
                                                            "9223372036854775808",
                                                            "-9223372036854775808",
                                                            "-9223372036854775809",
                                                            "18446744073709551616",
                                                            "123456789012345678901234567890",
                                                            "0.1000000000000000055511151231257827"};
  if (oneIn(2)) {
    text_ += unusual[below(unusual.size())];
  } else {
    text_ += std::to_string(static_cast<std::int64_t>(random_()) >> below(64));
  }
}

void RandomDocuments::whiteSpace() {
  static constexpr std::string_view white = " \t\n\r";
  if (!oneIn(6)) return;
  for (std::size_t count = below(4); count > 0; --count) text_ += white[below(white.size())];
}
