#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/temporary_home.h"

/// What a launched `open` does after it has written its record, in this order.
struct OpenScript {
  std::chrono::milliseconds waitFirst{0};
  /// Bytes for the endpoint file. None: it does not touch the file.
  std::optional<std::string> publish = std::nullopt;
  /// How long it then keeps running, unless the test is over before.
  std::chrono::milliseconds stay{0};
  int exitCode = 0;
};

/// The launches of the application by a server. In place of the system's `open` the server finds a
/// program that records how it was started: ServerSetup::overUsrBin takes one of the folders.
class Launches {
 public:
  using Duration = std::chrono::milliseconds;
  static constexpr Duration generous = std::chrono::seconds(120);

  explicit Launches(const TemporaryHome& home);

  /// A folder with the recording `open`.
  const std::filesystem::path& recordingFolder() const { return recording_; }
  /// A folder with an `open` that the system refuses to start.
  const std::filesystem::path& brokenFolder() const { return broken_; }

  /// What all later launches do. Initially, nothing.
  void script(const OpenScript& script) const;

  std::size_t count() const;
  /// The record of one launch, counted from 0: an object with "arguments", "environment",
  /// "directory", "descriptors" (number to file), "blockedSignals", "ignoredSignals", "pid" and
  /// "startedAt" (nanoseconds of the steady clock). Waits for it; throws std::runtime_error if
  /// there is none.
  nlohmann::json record(std::size_t index) const;
  /// When that launch reached its main().
  std::chrono::steady_clock::time_point startOf(std::size_t index) const;

 private:
  std::filesystem::path recording_;
  std::filesystem::path broken_;
  std::filesystem::path records_;
  std::filesystem::path script_;
};
