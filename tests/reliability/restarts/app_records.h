#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

using Clock = std::chrono::steady_clock;

/// One publication of the endpoint file.
struct Publication {
  pid_t process = 0;
  std::string token;
  Clock::time_point at;
};

/// One call that an application has carried out.
struct CarriedOut {
  std::size_t number = 0;
  std::string token;  ///< of the application
};

/// What the applications of one home folder write down, one after the other, for the test. Records
/// outlive the application that is killed.
class AppRecords {
 public:
  explicit AppRecords(std::filesystem::path home) : home_(std::move(home)) {}

  [[nodiscard]] const std::filesystem::path& home() const { return home_; }
  [[nodiscard]] std::filesystem::path lockFile() const { return home_ / "lock"; }

  /// Replaces the endpoint file in one step, then records that.
  void publish(std::string_view endpoint, pid_t process, std::string_view token) const;
  void carriedOut(std::size_t number, std::string_view token) const;

  [[nodiscard]] std::vector<Publication> publications() const;
  [[nodiscard]] std::vector<CarriedOut> carriedOut() const;
  void removeEndpointFile() const;

 private:
  [[nodiscard]] std::filesystem::path endpointFile() const;

  std::filesystem::path home_;
};
