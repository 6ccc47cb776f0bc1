#include "server/stdio_loop.h"

#include <utf8.h>

#include <iterator>
#include <string>

#include "json/reader.h"

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
  while (const auto line = lines_.next()) {
    if (!line->empty()) handleLine(*line);
  }
}

void StdioLoop::handleLine(std::string_view line) const {
  if (const auto document = json::read(line)) {
    if (document->root().isObject()) handle_(document->root());
  } else if (!utf8::is_valid(line.begin(), line.end())) {
    handleLine(repaired(line));
  }
}

}  // namespace server
