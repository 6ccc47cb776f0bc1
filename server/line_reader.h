#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "json/text.h"

namespace server {

/// Splits what comes in on a file descriptor into lines, which may be as long as memory
/// allows. For one thread.
class LineReader {
 public:
  /// The descriptor stays the caller's; it may be one that refuses to block.
  explicit LineReader(int input) : input_(input) {}

  /// The next line without its end, which is a line feed or a carriage return and a line
  /// feed; the last line may lack it. None at the end of input, or when reading fails. Waits
  /// for the line to be there. Valid until the next call.
  ///
  /// While a long line is still coming in, `partial` is given its beginning, again and again as
  /// it grows and moves, and never with a carriage return that may turn out to be the line's
  /// end.
  std::optional<std::string_view> next(
      const std::function<void(std::string_view beginning)>& partial);

 private:
  [[nodiscard]] std::string_view rest() const { return bytes_.view().substr(begin_); }
  std::string_view take(std::size_t length);
  bool readMore();
  void dropTakenLines();

  int input_;
  json::Text bytes_;
  std::size_t begin_ = 0;  // of the line that comes next
};

}  // namespace server
