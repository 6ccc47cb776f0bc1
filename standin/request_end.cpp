#include "standin/request_end.h"

namespace standin {

bool RequestEnd::reachedBy(std::string_view bytes) {
  for (const char byte : bytes) take(byte);
  return done_;
}

void RequestEnd::take(char byte) {
  if (inString_) {
    inString_ = escaped_ || byte != '"';
    escaped_ = !escaped_ && byte == '\\';
  } else if (byte == '{' || byte == '[') {
    ++depth_;
  } else if (byte == '}' || byte == ']') {
    if (depth_ <= 1) done_ = true;
    if (depth_ > 0) --depth_;
  } else if (byte == '"' && depth_ > 0) {
    inString_ = true;
  } else if (depth_ == 0 && std::string_view(" \t\r\n").find(byte) == std::string_view::npos) {
    done_ = true;
  }
}

}  // namespace standin
