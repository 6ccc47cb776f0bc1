#pragma once

#include <filesystem>
#include <string_view>

/// A temporary folder for one test, with a home folder in it. The destructor removes both. Throws
/// std::system_error if it cannot create them.
class TemporaryHome {
 public:
  explicit TemporaryHome(std::string_view homeName = "home");
  ~TemporaryHome();
  TemporaryHome(const TemporaryHome&) = delete;
  TemporaryHome& operator=(const TemporaryHome&) = delete;

  /// The whole folder, for files that are not part of the home folder.
  const std::filesystem::path& folder() const { return folder_; }
  /// The home folder of the server.
  const std::filesystem::path& home() const { return home_; }

 private:
  std::filesystem::path folder_;
  std::filesystem::path home_;
};
