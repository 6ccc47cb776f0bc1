#pragma once

#include <thread>

#include <asio/io_context.hpp>

#include "bridge/uptime_clock.h"

namespace bridge {

/// Runs the sockets and timers of the exchanges, always on exactly one thread.
///
/// - While a caller waits for an exchange, that caller's thread runs the loop: an exchange
///   costs no change of threads.
/// - Exchanges that outlive their caller's patience are run by a background thread, which is
///   started when such a caller leaves and ended when the next caller comes or the last such
///   exchange is over.
///
/// So handlers never run at the same time, nor at the same time as the code of the caller
/// that started them, and what they share needs no lock.
class ExchangeLoop {
 public:
  ExchangeLoop() = default;
  ExchangeLoop(const ExchangeLoop&) = delete;
  ExchangeLoop& operator=(const ExchangeLoop&) = delete;
  ~ExchangeLoop() { takeBack(); }

  /// The process's loop; made at the first call. To be used by one thread only.
  static ExchangeLoop& shared();

  /// A caller's time with the loop: takes it from the background thread, if that has it, and
  /// leaves it there at the end, if anything is still alive.
  class Turn {
   public:
    explicit Turn(ExchangeLoop& loop) : loop_(loop) { loop_.takeBack(); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() { loop_.leave(); }

    [[nodiscard]] asio::io_context& context() { return loop_.context_; }

    /// Runs handlers on this thread until `done` is true or the deadline has passed.
    void runUntil(UptimeClock::time_point deadline, const bool& done);

    /// Runs what has become ready, and waits for nothing.
    void runReady() { loop_.context_.poll(); }

   private:
    ExchangeLoop& loop_;
  };

 private:
  void takeBack();
  void leave();

  asio::io_context context_{1};
  std::thread background_;
};

}  // namespace bridge
