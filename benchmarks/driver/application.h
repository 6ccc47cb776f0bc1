#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/support/loopback_listener.h"

/// The application's side of the loopback connections, made to cost as little as possible: replies
/// are ready before the request arrives and are sent with one write. A thread of its own serves one
/// connection after the other. Every tool call makes two: the probe and the call itself.
class Application {
 public:
  /// Listens on a free loopback port; throws std::system_error when it can't.
  Application() : thread_([this] { serve(); }) {}
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  std::uint16_t port() const { return listener_.port(); }
  std::thread::native_handle_type thread() { return thread_.native_handle(); }

  /// Prepares for a tool call. The reply must live as long as the call takes. If the requests will
  /// be as long as those of the last call, finding their ends costs nothing.
  void expect(std::string_view reply, bool lengthsAsBefore);

  /// The requests received since expect(), which makes them invalid.
  std::vector<std::string_view> requests() const;

 private:
  void serve();
  void receive(int connection, std::string& request) const;

  LoopbackListener listener_{16};
  std::atomic<bool> stopping_ = false;
  mutable std::mutex mutex_;  // the thread holds it while it serves a connection
  std::string_view reply_;
  bool lengthsAsBefore_ = false;
  std::vector<std::string> requests_;
  std::size_t count_ = 0;  // of requests received
  std::thread thread_;
};
