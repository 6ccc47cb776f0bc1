#pragma once

#include <string>

namespace bridge {

// The environment variable that names the user's home directory. On macOS applications ignore HOME,
// and so does this server. A host may clear or change it without effect.
#ifdef __APPLE__
inline constexpr const char* homeVariable = "CFFIXED_USER_HOME";
#else
inline constexpr const char* homeVariable = "HOME";
#endif

/// The user's home directory as the platform reports it: the environment variable if it is set and
/// not empty, otherwise the system's record of the user. Empty if there is neither.
std::string homeDirectory(const char* variable = homeVariable);

}  // namespace bridge
