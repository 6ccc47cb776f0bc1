#pragma once

#include <functional>
#include <string_view>
#include <utility>

#include "json/reader.h"
#include "json/value.h"
#include "server/line_reader.h"

namespace server {

/// Reads lines and passes each that is a JSON object to a function. Every other line is dropped
/// silently. Keeps no state between lines. For one thread.
class StdioLoop {
 public:
  /// Reads from the descriptor `input`, which the caller owns. `handle` gets one object at a time,
  /// which is valid until it returns.
  StdioLoop(int input, std::function<void(json::Value request)> handle)
      : lines_(input), handle_(std::move(handle)) {}

  /// Returns at the end of input, after the last line has been handled.
  void run();

 private:
  void handleLine(std::string_view line, json::Reader& reader) const;

  LineReader lines_;
  std::function<void(json::Value)> handle_;
};

}  // namespace server
