#pragma once

#include <cstddef>
#include <string_view>

namespace standin {

/// Tells, as the bytes of a request arrive, whether its JSON text is complete: nothing marks
/// the end but the brace that closes it. Looks at each byte once, so that a long request costs
/// no more than its length.
class RequestEnd {
 public:
  /// Takes the bytes that came next. True once the text is complete, or can no longer become
  /// an object.
  bool reachedBy(std::string_view bytes);

 private:
  void take(char byte);

  std::size_t depth_ = 0;
  bool inString_ = false;
  bool escaped_ = false;
  bool done_ = false;
};

}  // namespace standin
