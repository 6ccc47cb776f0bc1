#pragma once

#include <cstddef>
#include <string_view>

#include "common/buffer.h"

namespace common {

/// A growing sequence of bytes: a message that is being received or written.
class Bytes {
 public:
  [[nodiscard]] std::string_view view() const { return {bytes_.data(), bytes_.size()}; }
  [[nodiscard]] std::size_t size() const { return bytes_.size(); }
  [[nodiscard]] std::size_t capacity() const { return bytes_.capacity(); }

  Bytes& append(std::string_view more) {
    bytes_.append(more);
    return *this;
  }
  Bytes& append(char byte) {
    bytes_.push(byte);
    return *this;
  }

  /// Room for `count` more bytes. Write there, then call commit().
  char* room(std::size_t count) { return bytes_.room(count); }
  void commit(std::size_t count) { bytes_.commit(count); }

  void dropFront(std::size_t count) { bytes_.dropFront(count); }

 private:
  Buffer<char> bytes_;
};

}  // namespace common
