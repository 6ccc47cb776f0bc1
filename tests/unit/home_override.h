#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "bridge/home_directory.h"
#include "tests/support/endpoint_file.h"
#include "tests/support/temporary_home.h"

/// Gives this process a temporary home directory while it exists. Its endpoint file does not exist
/// at first.
class HomeOverride {
 public:
  HomeOverride() {
    if (const char* before = std::getenv(bridge::homeVariable)) before_ = before;
    setenv(bridge::homeVariable, home_.home().c_str(), 1);
  }
  HomeOverride(const HomeOverride&) = delete;
  HomeOverride& operator=(const HomeOverride&) = delete;
  ~HomeOverride() {
    if (before_) {
      setenv(bridge::homeVariable, before_->c_str(), 1);
    } else {
      unsetenv(bridge::homeVariable);
    }
  }

  const EndpointFile& file() const { return file_; }

 private:
  TemporaryHome home_;
  EndpointFile file_{home_};
  std::optional<std::string> before_;
};
