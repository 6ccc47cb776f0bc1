#pragma once

#include <sys/types.h>

/// Resident memory of a process in bytes: now, and at its highest since the program started.
struct ResidentMemory {
  double now = 0;
  double peak = 0;
};

/// Asks the system about a running process. Throws std::runtime_error when it can't tell.
ResidentMemory residentMemory(pid_t process);
