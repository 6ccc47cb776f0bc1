#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// What becomes the standard input and output of a child; with quiet, its standard error is
/// thrown away.
struct ChildStreams {
  int input;
  int output;
  bool quiet = false;
};

/// Starts a command, found by way of PATH, in the driver's environment but with its own HOME.
/// Returns the process, which the caller waits for. Throws std::system_error.
pid_t startChild(const std::vector<std::string>& command, const std::string& home,
                 ChildStreams streams);
