#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "json/reader.h"
#include "json/value.h"
#include "server/line_reader.h"

namespace server {

/// Reads lines and hands each that is a JSON object to the dispatcher; every other line is
/// dropped without a word. Nothing is carried from one line to the next. For one thread.
class StdioLoop {
 public:
  /// Reads from the descriptor `input`, which stays the caller's. `handle` is called for one
  /// object at a time, which is valid until it returns.
  StdioLoop(int input, std::function<void(json::Value request)> handle)
      : lines_(input), handle_(std::move(handle)) {}

  /// Returns at the end of input, when the last line has been handled.
  void run();

 private:
  void handleLine(std::string_view line, json::Reader& reader) const;

  LineReader lines_;
  std::function<void(json::Value)> handle_;
};

}  // namespace server
