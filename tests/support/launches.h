#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/temporary_home.h"

/// What a launched `open` does, in this order, after it has written its record.
struct OpenScript {
  std::chrono::milliseconds waitFirst{0};
  /// Bytes for the endpoint file, which is otherwise left alone.
  std::optional<std::string> publish = std::nullopt;
  /// It stays that long, or until the test is over.
  std::chrono::milliseconds stay{0};
  int exitCode = 0;
};

/// The launches of the application that a server makes, seen through an `open` of our own,
/// which records how it was started. Its folder is meant for ServerSetup::overUsrBin.
class Launches {
 public:
  using Duration = std::chrono::milliseconds;

  explicit Launches(const TemporaryHome& home);

  /// A folder with the recording `open`.
  const std::filesystem::path& recordingFolder() const { return recording_; }
  /// A folder with an `open` that the system refuses to start.
  const std::filesystem::path& brokenFolder() const { return broken_; }

  /// What every later launch does; nothing, unless told.
  void script(const OpenScript& script) const;

  std::size_t count() const;
  /// The record of one launch, counted from 0. Throws std::runtime_error when it is not
  /// there in time. Its members are: arguments, environment, directory, descriptors (number
  /// to what it is), blockedSignals, ignoredSignals, pid, startedAt (nanoseconds of the
  /// steady clock).
  nlohmann::json record(std::size_t index, Duration within = std::chrono::seconds(10)) const;
  /// When that launch ran its first lines.
  std::chrono::steady_clock::time_point startOf(std::size_t index,
                                                Duration within = std::chrono::seconds(10)) const;

 private:
  std::filesystem::path recording_;
  std::filesystem::path broken_;
  std::filesystem::path records_;
  std::filesystem::path script_;
};
