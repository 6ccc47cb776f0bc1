#pragma once

#include <cstddef>

#include "common/bytes.h"

namespace json {

/// Room at the end of the output. The position of the next byte is passed from function to
/// function rather than stored, so that it stays in a register.
class Room {
 public:
  explicit Room(common::Bytes& out) : out_(out), begin_(out.room(0)) {}

  [[nodiscard]] char* begin() const { return begin_; }

  /// Ensures room for `size` bytes at `to`, and returns where that place is now.
  char* reserve(char* to, std::size_t size) {
    commit(to);
    begin_ = out_.room(size);
    return begin_;
  }

  /// Makes everything before `to` part of the output.
  void commit(char* to) { out_.commit(static_cast<std::size_t>(to - begin_)); }

 private:
  common::Bytes& out_;
  char* begin_;
};

}  // namespace json
