#pragma once

#include <cstddef>
#include <random>
#include <vector>

#include "tests/reliability/restarts/history.h"
#include "tests/support/server_process.h"

/// The host of one server: one tool call after the other.
class Host {
 public:
  Host(ServerProcess& server, unsigned seed) : server_(server), random_(seed) {}

  /// Makes one call. Throws std::runtime_error if the answer isn't one to this call.
  void call();

  [[nodiscard]] const std::vector<Call>& calls() const { return calls_; }

 private:
  ServerProcess& server_;
  std::mt19937 random_;
  std::vector<Call> calls_;
};
