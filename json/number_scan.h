#pragma once

#include <cstdint>

namespace json {

/// Follows a number byte by byte, so that one which arrives in two pieces is read on where
/// the first piece ended.
class NumberScan {
 public:
  /// Reads on from `from` and returns the first byte that is not the number's, or `end`.
  const char* read(const char* from, const char* end);

  /// Whether what was read so far is a number: not "", "-", "1.", "1e" or "1e+". After a
  /// byte that can't follow where it stands, as in "01", it is the next byte's reader who
  /// finds it where a comma or an end should be.
  [[nodiscard]] bool isNumber() const {
    return state_ == zero || state_ == integer || state_ == fraction || state_ == exponent;
  }

 private:
  enum State : std::uint8_t {
    start,
    minus,
    zero,
    integer,
    point,
    fraction,
    e,
    sign,
    exponent,
    stop
  };

  static constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
  static constexpr State next(State state, char c);

  [[nodiscard]] bool isRunOfDigits() const {
    return state_ == integer || state_ == fraction || state_ == exponent;
  }

  State state_ = start;
};

constexpr NumberScan::State NumberScan::next(State state, char c) {
  switch (state) {
    case start: return c == '-' ? minus : next(minus, c);
    case minus: return c == '0' ? zero : isDigit(c) ? integer : stop;
    case zero: return c == '.' ? point : c == 'e' || c == 'E' ? e : stop;
    case integer: return isDigit(c) ? integer : next(zero, c);
    case point: return isDigit(c) ? fraction : stop;
    case fraction: return isDigit(c) ? fraction : c == 'e' || c == 'E' ? e : stop;
    case e: return c == '+' || c == '-' ? sign : next(sign, c);
    case sign:
    case exponent: return isDigit(c) ? exponent : stop;
    case stop: break;
  }
  return stop;
}

inline const char* NumberScan::read(const char* from, const char* end) {
  for (; from != end; ++from) {
    if (isDigit(*from) && isRunOfDigits()) continue;
    const State following = next(state_, *from);
    if (following == stop) break;
    state_ = following;
  }
  return from;
}

}  // namespace json
