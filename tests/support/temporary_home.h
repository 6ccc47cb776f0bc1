#pragma once

#include <filesystem>
#include <string_view>

/// A folder for one test alone, with the server's home folder inside it. Everything in it
/// is removed at the end. Throws std::system_error when it cannot be made.
class TemporaryHome {
 public:
  explicit TemporaryHome(std::string_view homeName = "home");
  ~TemporaryHome();
  TemporaryHome(const TemporaryHome&) = delete;
  TemporaryHome& operator=(const TemporaryHome&) = delete;

  /// The whole folder: room for what belongs to the test but not into the home folder.
  const std::filesystem::path& folder() const { return folder_; }
  /// What the server gets as HOME.
  const std::filesystem::path& home() const { return home_; }

 private:
  std::filesystem::path folder_;
  std::filesystem::path home_;
};
