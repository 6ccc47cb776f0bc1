#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/loopback_listener.h"

/// A desktop application for hundreds of thousands of calls. It listens on a port of 127.0.0.1,
/// serves one connection at a time on a thread of its own, and keeps no record of them.
///
/// The arguments of a call, such as {"do":"reset"}, choose what it does; see behaviour(). It
/// answers every probe. With `failsProbes`, it resets the connection of every thousandth one
/// instead.
class MisbehavingApp {
 public:
  /// Listens at once. Throws std::system_error if it cannot.
  explicit MisbehavingApp(bool failsProbes);
  ~MisbehavingApp();
  MisbehavingApp(const MisbehavingApp&) = delete;
  MisbehavingApp& operator=(const MisbehavingApp&) = delete;

  int port() const { return listener_.port(); }
  std::size_t calls() const { return calls_; }

  /// Whether it wrote its reply to a call so late that the server may have received only a part;
  /// see ReplyWriter. Ask once for each call, in their order.
  bool wasLate();

 private:
  void serve();
  void handle(int connection);
  void reply(int connection, std::string_view name);

  bool failsProbes_;
  LoopbackListener listener_{64};
  std::atomic<bool> done_ = false;
  std::atomic<std::size_t> probes_ = 0;
  std::atomic<std::size_t> calls_ = 0;
  std::mutex mutex_;
  std::condition_variable replied_;
  std::deque<bool> late_;  // calls about which wasLate() was not asked yet
  std::thread thread_;
};

/// What a call can ask for, and the tool result that it leads to.
struct Behaviour {
  std::string_view name;
  /// What the application writes before it closes the connection. "reset" resets it instead.
  std::string reply;
  std::string text;
  bool isError = false;
};

/// The behaviour with that name.
const Behaviour& behaviour(std::string_view name);
