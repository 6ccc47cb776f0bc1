#include "standin/demo/text_layout.h"

#include <algorithm>

namespace demo {
namespace {

bool startsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80;
}

// How many bytes the first `count` characters have.
std::size_t bytesOf(std::string_view text, std::size_t count) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (startsCharacter(text[i]) && count-- == 0) return i;
  }
  return text.size();
}

// The end of the first line of a text if a line has room for `limit` bytes.
std::size_t endOfLine(std::string_view text, std::size_t limit, BreakAt preferred) {
  const std::size_t space = text.rfind(' ', limit);
  const std::size_t comma = text.rfind(',', limit - 1);
  const std::size_t beforeSpace = space == std::string_view::npos ? 0 : space;
  const std::size_t afterComma = comma == std::string_view::npos ? 0 : comma + 1;
  const std::size_t wanted = preferred == BreakAt::Spaces ? beforeSpace : afterComma;
  if (wanted > limit / 2) return wanted;
  const std::size_t last = std::max(beforeSpace, afterComma);
  return last > 0 ? last : limit;
}

}  // namespace

std::vector<std::string> wrapped(std::string_view text, std::size_t width, BreakAt preferred) {
  std::vector<std::string> lines;
  for (std::size_t limit = bytesOf(text, width); limit < text.size();
       limit = bytesOf(text, width)) {
    const std::size_t end = endOfLine(text, limit, preferred);
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(text[end] == ' ' ? end + 1 : end);
  }
  lines.emplace_back(text);
  return lines;
}

std::string shortened(std::string_view text, std::size_t limit) {
  if (bytesOf(text, limit + limit / 2) == text.size()) return std::string(text);
  const std::size_t end = bytesOf(text, limit);
  const auto missing = std::ranges::count_if(text.substr(end), startsCharacter);
  return std::string(text.substr(0, end)) + " ... (" + std::to_string(missing) +
         " more characters)";
}

}  // namespace demo
