#pragma once

#include <cstddef>

namespace demo {

/// What is known about the terminal that reads the output of a program.
struct Terminal {
  std::size_t width = 80;  ///< in characters
  bool colours = false;
};

/// The terminal that a descriptor refers to; the defaults above if it is no terminal. Terminals
/// show colours unless NO_COLOR is set or TERM is "dumb".
Terminal terminalOf(int descriptor);

}  // namespace demo
