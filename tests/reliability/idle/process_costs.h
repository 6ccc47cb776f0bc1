#pragma once

#include <sys/types.h>

#include <cstddef>

/// What a process costs the machine while it waits.
struct ProcessCosts {
  std::size_t privateKibibytes = 0;  ///< memory that it shares with no other process
  std::size_t wakeUps = 0;           ///< of all its threads, since they started
};

/// The costs of that process so far. Throws std::runtime_error if the system does not report them.
ProcessCosts costsOf(pid_t process);
