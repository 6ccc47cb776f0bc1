#pragma once

#include <sys/types.h>

#include <cstddef>

/// What a process holds of the machine.
struct ProcessState {
  double residentBytes = 0;
  std::size_t descriptors = 0;
  std::size_t threads = 0;
  /// Running ones and those that have ended but are still in the system's table.
  std::size_t children = 0;
};

/// The state of that process now. Throws std::runtime_error if the system doesn't tell.
ProcessState stateOf(pid_t process);
