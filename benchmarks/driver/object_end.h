#pragma once

#include <cstddef>
#include <string_view>

/// Tells where a JSON object that comes in pieces ends, by its brackets alone.
class ObjectEnd {
 public:
  /// Takes the next piece and returns whether the object has ended within what came so far.
  bool passed(std::string_view piece) {
    for (const char byte : piece) {
      if (escaped_) {
        escaped_ = false;
      } else if (inString_) {
        escaped_ = byte == '\\';
        inString_ = byte != '"';
      } else if (byte == '"') {
        inString_ = true;
      } else if (byte == '{') {
        ++depth_;
      } else if (byte == '}' && --depth_ == 0) {
        return true;
      }
    }
    return false;
  }

 private:
  std::size_t depth_ = 0;
  bool inString_ = false;
  bool escaped_ = false;
};
