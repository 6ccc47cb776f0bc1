#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "common/bytes.h"

namespace server {

/// Splits the bytes of a file descriptor into lines, which may be as long as memory allows. For one
/// thread.
class LineReader {
 public:
  /// The caller owns the descriptor, which may be non-blocking.
  explicit LineReader(int input) : input_(input) {}

  /// Waits for the next line and returns it without its end: a line feed, or a carriage return and
  /// a line feed. The last line may lack its end. None at the end of input or when reading fails.
  /// Valid until the next call.
  ///
  /// While a long line arrives, `partial` is called after each read with all of the line so far,
  /// which may have moved. A final carriage return is left out: it may be part of the line's end.
  std::optional<std::string_view> next(
      const std::function<void(std::string_view beginning)>& partial);

 private:
  [[nodiscard]] std::string_view rest() const { return bytes_.view().substr(begin_); }
  std::string_view take(std::size_t length);
  bool readMore();
  void dropTakenLines();

  int input_;
  common::Bytes bytes_;
  std::size_t begin_ = 0;  // of the next line
};

}  // namespace server
