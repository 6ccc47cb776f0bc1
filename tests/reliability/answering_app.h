#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/loopback_listener.h"

/// A stand-in for the desktop application whose reply depends on the request. Serves one connection
/// at a time on a thread of its own.
class AnsweringApp {
 public:
  /// Returns the reply to a whole request, after which the connection is closed. Without a reply
  /// the connection stays open until answerLate(). Runs on the application's thread.
  using Answer = std::function<std::optional<std::string>(const nlohmann::json& request)>;

  /// Listens at once.
  explicit AnsweringApp(Answer answer);
  ~AnsweringApp();
  AnsweringApp(const AnsweringApp&) = delete;
  AnsweringApp& operator=(const AnsweringApp&) = delete;

  [[nodiscard]] std::uint16_t port() const { return listener_.port(); }

  /// Writes this reply to every connection that was left open, and closes it. For any thread.
  void answerLate(std::string_view reply);

 private:
  void serve();
  void answer(int connection);

  Answer answer_;
  LoopbackListener listener_{1024};
  std::atomic<bool> ending_ = false;
  std::mutex mutex_;
  std::vector<int> leftOpen_;  // guarded by mutex_
  std::thread thread_;
};
