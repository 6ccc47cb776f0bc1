#pragma once

namespace bridge {

/// Starts the desktop application in the background, through the system's `open` tool.
///
/// The child gets this process's environment, working directory and standard streams, no other
/// descriptor, and default signal handling. It is never waited for, and the system reaps it.
/// False if it can't be started; what becomes of it is not observed.
bool launchApp();

}  // namespace bridge
