#include "benchmarks/driver/measures.h"

#include <memory>
#include <utility>

std::vector<Measure> allMeasures(Application& application) {
  const auto calling = [&application](Call call, std::size_t count) {
    const auto meter = std::make_shared<CallMeter>(application, std::move(call));
    return [=](const Competitor& who) { return meter->run(who, count); };
  };
  return {
      {"start to first reply (initialize)", &Cost::start, calling(toolsList(), 0), 10},
      {"tools/list round trip", &Cost::call, calling(toolsList(), 500)},
      {"tools/call, 300-byte reply", &Cost::call, calling(smallCall(), 50)},
      {"tools/call, 1 MiB reply, one long text", &Cost::call, calling(longTextReply(1 << 20), 3)},
      {"tools/call, 4 MB reply, one long text", &Cost::call, calling(longTextReply(4'000'000), 3)},
      {"tools/call, 4 MB reply, 29,000 objects", &Cost::call, calling(listingReply(), 3)},
      {"tools/call, 1 MiB argument", &Cost::call, calling(longArgument(1 << 20), 3)},
      {"tools/call, 20 MB argument", &Cost::call, calling(longArgument(20'000'000), 1)},
      {"resident memory, idle", &Cost::idleMemory, calling(toolsList(), 0)},
      {"resident memory, peak after ten 4 MB replies", &Cost::peakMemory,
       calling(longTextReply(4'000'000), 9)},
      {"1 MB reply, per byte", &Cost::call, calling(longTextReply(1'000'000), 3), 1, 1},
      {"2 MB reply, per byte", &Cost::call, calling(longTextReply(2'000'000), 3), 1, 2},
      {"4 MB reply, per byte", &Cost::call, calling(longTextReply(4'000'000), 3), 1, 4},
      {"1 MB argument, per byte", &Cost::call, calling(longArgument(1'000'000), 3), 1, 1},
      {"4 MB argument, per byte", &Cost::call, calling(longArgument(4'000'000), 3), 1, 4},
      {"16 MB argument, per byte", &Cost::call, calling(longArgument(16'000'000), 1), 1, 16},
      {"64 MB argument, per byte", &Cost::call, calling(longArgument(64'000'000), 1), 1, 64},
  };
}
