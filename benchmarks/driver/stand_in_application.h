#pragma once

#include <poll.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "benchmarks/driver/descriptor.h"
#include "tests/support/loopback_listener.h"

/// The application's side of the loopback connections, made to cost as little as it can: replies
/// are ready before they are asked for and go out in one write, and where the length of a request
/// is known it is awaited, not searched for. One thread of its own serves all connections, each
/// from its request to the moment the client closes it.
///
/// Connections are taken in pairs, as every tool call makes them: the first of each pair is the
/// probe, the second the call itself.
class StandInApplication {
 public:
  /// What is about to come. A request length of 0 means that it isn't known yet: the end is then
  /// found by reading the request. The replies must stay alive until the next script.
  struct Script {
    std::string_view probeReply;
    std::string_view callReply;
    std::size_t probeLength = 0;
    std::size_t callLength = 0;
  };

  /// Listens on a free loopback port; throws std::system_error when it can't.
  StandInApplication();
  ~StandInApplication();
  StandInApplication(const StandInApplication&) = delete;
  StandInApplication& operator=(const StandInApplication&) = delete;

  std::uint16_t port() const { return listener_.port(); }
  /// The thread that serves.
  std::thread::native_handle_type thread() { return thread_.native_handle(); }

  /// Prepares for the next pair of connections. Not while a call is under way.
  void expect(const Script& script);

  /// How many requests were received since expect(), and the bytes of the latest probe (0) and
  /// call (1). Valid until the next expect(); not while a call is under way.
  std::size_t requestCount() const;
  std::string_view request(std::size_t index) const;

 private:
  struct Exchange {
    std::string_view reply;
    std::size_t length = 0;    // of the request; 0: not known
    std::string buffer;        // as long as the longest request so far
    std::size_t received = 0;  // bytes of the buffer that hold the request
  };

  void serve();
  void answer(Descriptor connection);
  static void receive(int connection, Exchange& exchange);
  void closeFinished(const std::vector<pollfd>& polled);

  LoopbackListener listener_{16};
  Descriptor stopReader_, stopWriter_;
  std::array<Exchange, 2> exchanges_;  // handed to and fro by way of busy_
  std::atomic<std::size_t> count_ = 0;
  std::atomic<bool> busy_ = false;
  std::vector<Descriptor> answered_;  // waiting for the client to close; the thread's own
  std::thread thread_;
};
