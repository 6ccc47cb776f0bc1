#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

/// Identifies a file by its device and inode, because a path can mean different files to different
/// processes. Empty if there is no file.
inline std::string fileIdentity(const std::filesystem::path& path) {
  struct stat status{};
  if (::stat(path.c_str(), &status) != 0) return "";
  return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}
