#include "benchmarks/driver/growth.h"

#include <algorithm>
#include <initializer_list>
#include <memory>

#include "benchmarks/driver/interleave.h"
#include "benchmarks/driver/placement.h"
#include "benchmarks/driver/timed_call.h"

namespace {

double peakBeyondIdle(Setting& setting, const Contestant& contestant, const ToolCall& call) {
  Conversation idle(contestant, setting.home());
  idle.initialize();
  TimedCall timed(setting, contestant, call);
  timed.run();
  return timed.conversation().memory().peak - idle.memory().now;
}

GrowthPoint measurePoint(Setting& setting, const ToolCall& call, double bytes) {
  const auto times = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    const auto timed = std::make_shared<TimedCall>(setting, contestant, call);
    return [=] { return timed->run() / bytes; };
  });
  const auto memory = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    return [&] { return peakBeyondIdle(setting, contestant, call) / bytes; };
  });
  return {.bytes = bytes,
          .nanosecondsPerByte = interleavedMedians(times, std::max(1, setting.rounds / 2), 1),
          .memoryPerByte = interleavedMedians(memory, 1, 1)};
}

Growth measure(Setting& setting, const char* what, ToolCall (*make)(std::size_t),
               std::initializer_list<std::size_t> sizes) {
  Growth growth{.what = what, .points = {}};
  for (const std::size_t bytes : sizes) {
    growth.points.push_back(measurePoint(setting, make(bytes), static_cast<double>(bytes)));
  }
  return growth;
}

}  // namespace

std::vector<Growth> measureGrowth(Setting& setting) {
  const Placement placement(setting.application.thread());
  return {
      measure(setting, "reply", longTextReply, {1'000'000, 2'000'000, 4'000'000}),
      measure(setting, "argument", longArgument, {1'000'000, 4'000'000, 16'000'000, 64'000'000})};
}
