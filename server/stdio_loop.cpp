#include "server/stdio_loop.h"

#include <utf8.h>

#include <optional>
#include <string>
#include <utility>

namespace server {

void StdioLoop::run() {
  while (true) {
    json::Reader reader;  // reads a long line while it arrives
    const auto line = lines_.next([&](std::string_view soFar) { reader.read(soFar); });
    if (!line) return;
    if (!line->empty()) handleLine(*line, reader);
  }
}

void StdioLoop::handleLine(std::string_view line, json::Reader& reader) const {
  if (reader.read(line) == json::Reader::State::complete) {
    const json::Document document = std::move(reader).take();
    if (document.root().isObject()) handle_(document.root());
  } else if (!utf8::is_valid(line)) {
    json::Reader again;
    handleLine(utf8::replace_invalid(line), again);
  }
}

}  // namespace server
