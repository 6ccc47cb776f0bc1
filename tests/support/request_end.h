#pragma once

#include <string_view>

/// Tells where a request ends that comes in pieces. Nothing but the text itself tells it, so
/// brackets outside strings are counted. No JSON library is asked, since requests may hold what
/// it refuses.
class RequestEnd {
 public:
  /// Takes the bytes that came next; true once the end is among them.
  bool reachedBy(std::string_view bytes) {
    for (const char byte : bytes) {
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
