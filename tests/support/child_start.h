#pragma once

#include <sys/types.h>

#include "tests/support/server_process.h"

/// The standard streams of a child.
struct ChildStreams {
  int input;
  int output;
  int error;
};

/// Starts the built server with this setup and returns when it has been loaded. The streams still
/// belong to the caller. Throws PrivateMountsRefused or std::system_error.
pid_t startServer(const TemporaryHome& home, const ServerSetup& setup, ChildStreams streams);
