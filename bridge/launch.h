#pragma once

namespace bridge {

/// Starts the desktop application in the background with the system's `open` tool. False if the
/// tool cannot be started; whether it succeeds is not observed.
///
/// The child inherits the environment, the working directory and the standard streams, no other
/// descriptor, and default signal handling. It is not waited for; the system reaps it.
bool launchApp();

}  // namespace bridge
