#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

#include "tests/support/temporary_home.h"

/// An `open` that records each launch and then does what the server's home folder says. One serves
/// any number of servers, each with a home of its own.
class RecordedOpen {
 public:
  RecordedOpen();

  /// For ServerSetup::overUsrBin.
  [[nodiscard]] const std::filesystem::path& folder() const { return place_.home(); }

  /// How often the server with this home has launched the application.
  static std::size_t launches(const TemporaryHome& home);

  /// Runs these shell commands at each launch for that server.
  static void onLaunch(const TemporaryHome& home, std::string_view commands);

 private:
  TemporaryHome place_;
};
