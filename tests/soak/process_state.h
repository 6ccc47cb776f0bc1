#pragma once

#include <sys/types.h>

#include <cstddef>

/// The resources that a process uses.
struct ProcessState {
  double residentBytes = 0;
  std::size_t descriptors = 0;
  std::size_t threads = 0;
  /// Running ones and zombies.
  std::size_t children = 0;
};

/// The state of that process now. Throws std::runtime_error if the system does not report it.
ProcessState stateOf(pid_t process);
