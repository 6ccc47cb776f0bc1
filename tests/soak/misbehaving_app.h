#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/loopback_listener.h"

/// A stand-in for the desktop application for hundreds of thousands of calls: it listens on a
/// port of 127.0.0.1, serves one connection at a time on a thread of its own, and keeps nothing.
///
/// What it does with a call is what the call's arguments ask for, such as {"do":"reset"}; see
/// behaviour() for what there is. A probe it answers, but for every thousandth, which it breaks
/// off if `failsProbes` is set.
class MisbehavingApp {
 public:
  /// Listens at once. Throws std::system_error if it can't.
  explicit MisbehavingApp(bool failsProbes);
  ~MisbehavingApp();
  MisbehavingApp(const MisbehavingApp&) = delete;
  MisbehavingApp& operator=(const MisbehavingApp&) = delete;

  int port() const { return listener_.port(); }
  std::size_t calls() const { return calls_; }

 private:
  void serve();
  void answer(int connection);

  bool failsProbes_;
  LoopbackListener listener_{64};
  std::atomic<bool> done_ = false;
  std::atomic<std::size_t> probes_ = 0;
  std::atomic<std::size_t> calls_ = 0;
  std::thread thread_;
};

/// What a call may ask for, and what the agent must be told then.
struct Behaviour {
  std::string_view name;
  /// The bytes that the application writes before it closes the connection; none at all and a
  /// broken connection for "reset".
  std::string reply;
  /// The text of the tool result, and whether it is a failure's.
  std::string text;
  bool fails = false;
};

/// The behaviour of that name; they are made once.
const Behaviour& behaviour(std::string_view name);
