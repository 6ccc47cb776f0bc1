#include "benchmarks/driver/placement.h"

#ifdef __linux__

#include <sched.h>

namespace {

std::vector<int> processorsOf(pthread_t thread) {
  cpu_set_t set;
  CPU_ZERO(&set);
  ::pthread_getaffinity_np(thread, sizeof set, &set);
  std::vector<int> processors;
  for (int number = 0; number < CPU_SETSIZE; ++number) {
    if (CPU_ISSET(static_cast<std::size_t>(number), &set)) processors.push_back(number);
  }
  return processors;
}

void keepTo(const std::vector<int>& processors, pthread_t thread) {
  cpu_set_t set;
  CPU_ZERO(&set);
  for (const int number : processors) CPU_SET(static_cast<std::size_t>(number), &set);
  ::pthread_setaffinity_np(thread, sizeof set, &set);
}

}  // namespace

#else

namespace {

std::vector<int> processorsOf(pthread_t) {
  return {};
}
void keepTo(const std::vector<int>&, pthread_t) {}

}  // namespace

#endif

Placement::Placement(pthread_t other) : other_(other), allowed_(processorsOf(::pthread_self())) {
  if (allowed_.size() < 2) return;
  keepTo({allowed_.front()}, ::pthread_self());
  keepTo({allowed_.back()}, other_);
}

Placement::~Placement() {
  if (allowed_.size() < 2) return;
  keepTo(allowed_, ::pthread_self());
  keepTo(allowed_, other_);
}
