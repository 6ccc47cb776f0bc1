#pragma once

#include <sys/types.h>

#include "tests/support/server_process.h"

/// What becomes the standard streams of a child.
struct ChildStreams {
  int input;
  int output;
  int error;
};

/// Starts the built server with this setup and these streams, which stay the caller's to
/// close, and returns once it runs. Throws PrivateMountsRefused, or std::system_error.
pid_t startServer(const TemporaryHome& home, const ServerSetup& setup, ChildStreams streams);
