#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "tests/support/temporary_home.h"

/// The token that tests publish by default. It is easy to find where it must not be.
inline constexpr std::string_view usualToken = "token-for-the-application-alone";

/// The endpoint file, through which the application publishes where it listens. It does not exist
/// until something is written.
class EndpointFile {
 public:
  explicit EndpointFile(const TemporaryHome& home);

  /// The text of a usable file.
  static std::string text(int port, std::string_view token = usualToken, std::int64_t version = 1);

  /// Replaces the file atomically with a usable one.
  void publish(int port, std::string_view token = usualToken, std::int64_t version = 1) const;
  /// Replaces the file atomically with these bytes.
  void write(std::string_view bytes) const;
  void remove() const;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};
