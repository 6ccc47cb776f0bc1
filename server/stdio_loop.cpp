#include "server/stdio_loop.h"

#include <utf8.h>

#include <iterator>
#include <string>
#include <utility>

namespace server {
namespace {

/// The line with U+FFFD in place of whatever is not UTF-8 in it.
std::string repaired(std::string_view line) {
  std::string text;
  text.reserve(line.size());
  utf8::replace_invalid(line.begin(), line.end(), std::back_inserter(text));
  return text;
}

}  // namespace

void StdioLoop::run() {
  while (true) {
    json::Reader reader;  // reads a long line on while it is still coming in
    const auto line = lines_.next([&](std::string_view soFar) { reader.read(soFar); });
    if (!line) return;
    if (!line->empty()) handleLine(*line, reader);
  }
}

void StdioLoop::handleLine(std::string_view line, json::Reader& reader) const {
  if (reader.read(line) == json::Reader::State::complete) {
    const json::Document document = std::move(reader).take(line);
    if (document.root().isObject()) handle_(document.root());
  } else if (!utf8::is_valid(line.begin(), line.end())) {
    json::Reader again;
    handleLine(repaired(line), again);
  }
}

}  // namespace server
