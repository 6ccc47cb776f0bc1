#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "tests/reliability/answering_app.h"
#include "tests/reliability/faults/session.h"
#include "tests/reliability/recorded_open.h"
#include "tests/reliability/refusing_port.h"
#include "tests/support/temporary_home.h"

/// All that one session needs around its server: a home folder with the endpoint file, and the
/// application.
class SessionPlace {
 public:
  explicit SessionPlace(const Session& session);

  [[nodiscard]] const TemporaryHome& home() const { return home_; }
  /// Where strace writes its trace, and what it has written.
  [[nodiscard]] std::filesystem::path traceFile() const { return home_.folder() / "trace"; }
  [[nodiscard]] std::string trace() const;
  [[nodiscard]] std::size_t launches() const { return RecordedOpen::launches(home_); }

  /// How often the application has received each tool call.
  std::map<std::size_t, std::size_t> calls();
  /// The application leaves the abandoned probe open until answerLate().
  void holdLateAnswer() { answersLateItself_ = false; }
  void answerLate();

 private:
  std::optional<std::string> answer(const nlohmann::json& request);

  TemporaryHome home_;
  RefusingPort refusing_;
  bool leavesProbeOpen_;
  bool answersLateItself_ = true;
  std::mutex mutex_;
  std::map<std::size_t, std::size_t> calls_;  // guarded by mutex_
  AnsweringApp app_;
};
