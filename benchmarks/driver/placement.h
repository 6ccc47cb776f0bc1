#pragma once

#include <pthread.h>

#include <vector>

/// While it lives, the calling thread and the processes that it starts share one processor, and
/// the other thread has another: host and server here, application there. Where the scheduler
/// happens to put processes that wake each other decides more than anything they do: 3 or 40
/// microseconds for the same short answer, 9 or 14 milliseconds for the same long one. Does
/// nothing on a machine with one processor, and on systems that don't let a program choose.
class Placement {
 public:
  explicit Placement(pthread_t other);
  ~Placement();
  Placement(const Placement&) = delete;
  Placement& operator=(const Placement&) = delete;

 private:
  pthread_t other_;
  std::vector<int> allowed_;  // the processors that this program may use
};
