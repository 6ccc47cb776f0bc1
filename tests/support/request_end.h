#pragma once

#include <string_view>

/// Finds the end of a request that arrives in pieces, by counting brackets outside strings. It uses
/// no JSON library, because requests may contain what a library rejects.
class RequestEnd {
 public:
  /// Call it with each piece. True once the end of the request is in one.
  bool reachedBy(std::string_view piece) {
    for (const char byte : piece) {
      if (escaped_) {
        escaped_ = false;
      } else if (inString_) {
        escaped_ = byte == '\\';
        inString_ = byte != '"';
      } else if (byte == '"') {
        inString_ = true;
      } else if (byte == '{' || byte == '[') {
        ++depth_;
      } else if ((byte == '}' || byte == ']') && --depth_ == 0) {
        return true;
      }
    }
    return false;
  }

 private:
  int depth_ = 0;
  bool inString_ = false;
  bool escaped_ = false;
};
