#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

/// Which file that is, whatever its name is where one stands: its device and its number there.
/// Empty if there is none.
inline std::string fileIdentity(const std::filesystem::path& path) {
  struct stat status{};
  if (::stat(path.c_str(), &status) != 0) return "";
  return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}
