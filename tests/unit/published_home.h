#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "bridge/home_directory.h"
#include "tests/support/endpoint_file.h"
#include "tests/support/temporary_home.h"

/// A home directory that is this process's own as long as this lives, and the endpoint file
/// in it, which is not there at first.
class PublishedHome {
 public:
  PublishedHome() {
    if (const char* before = std::getenv(bridge::homeVariable)) before_ = before;
    setenv(bridge::homeVariable, home_.home().c_str(), 1);
  }
  PublishedHome(const PublishedHome&) = delete;
  PublishedHome& operator=(const PublishedHome&) = delete;
  ~PublishedHome() {
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
