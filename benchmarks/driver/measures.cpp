#include "benchmarks/driver/measures.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "benchmarks/driver/checks.h"
#include "benchmarks/driver/clock.h"
#include "benchmarks/driver/interleave.h"
#include "benchmarks/driver/placement.h"
#include "benchmarks/driver/timed_call.h"

namespace {

constexpr std::string_view listLine = "{\"jsonrpc\":\"2.0\",\"id\":2,\"method\":\"tools/list\"}\n";

struct NamedCall {
  std::string what;
  ToolCall call;
  int samplesPerRound;
};

std::vector<NamedCall> namedCalls() {
  std::vector<NamedCall> calls;
  const auto add = [&calls](const char* what, ToolCall call, int samplesPerRound) {
    calls.push_back({.what = what, .call = std::move(call), .samplesPerRound = samplesPerRound});
  };
  add("tools/call, 300-byte reply", smallCall(), 20);
  add("tools/call, 1 MiB reply, one long text", longTextReply(1'048'576), 2);
  add("tools/call, 4 MB reply, one long text", longTextReply(4'000'000), 1);
  add("tools/call, 4 MB reply, 29,000 objects", listingReply(), 1);
  add("tools/call, 1 MiB argument", longArgument(1'048'576), 2);
  add("tools/call, 20 MB argument", longArgument(20'000'000), 1);
  return calls;
}

double timeStart(Setting& setting, const Contestant& contestant) {
  const Clock clock;
  Conversation conversation(contestant, setting.home());
  const std::string_view answer = conversation.initialize();
  const double elapsed = clock.nanoseconds();
  checkInitialize(contestant, answer);
  return elapsed;
}

std::vector<double> startToFirstReply(Setting& setting) {
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    timeStart(setting, contestant);  // so that the program's file is at hand
    return [&] { return timeStart(setting, contestant); };
  });
  return interleavedMedians(samplers, 10 * setting.rounds, 1);
}

double timeList(Conversation& conversation, const Contestant& contestant,
                std::string_view checked) {
  const Clock clock;
  const std::string_view answer = conversation.ask(listLine);
  const double elapsed = clock.nanoseconds();
  if (answer != checked) checkToolsList(contestant, answer);
  return elapsed;
}

std::vector<double> toolsList(Setting& setting) {
  const Placement placement(setting.application.thread());
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    const auto conversation = std::make_shared<Conversation>(contestant, setting.home());
    conversation->initialize();
    const std::string checked(conversation->ask(listLine));
    checkToolsList(contestant, checked);
    return [=, &contestant] { return timeList(*conversation, contestant, checked); };
  });
  return interleavedMedians(samplers, setting.rounds, 20);
}

std::vector<double> toolCall(Setting& setting, const NamedCall& named) {
  const Placement placement(setting.application.thread());
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    const auto timed = std::make_shared<TimedCall>(setting, contestant, named.call);
    return [timed] { return timed->run(); };
  });
  return interleavedMedians(samplers, setting.rounds, named.samplesPerRound);
}

std::vector<double> idleMemory(Setting& setting) {
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    return [&] {
      Conversation conversation(contestant, setting.home());
      conversation.initialize();
      return conversation.memory().now;
    };
  });
  return interleavedMedians(samplers, 5, 1);
}

std::vector<double> peakMemory(Setting& setting) {
  const ToolCall call = longTextReply(4'000'000);
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    return [&] {
      TimedCall timed(setting, contestant, call);
      for (int calls = 1; calls < 10; ++calls) timed.run();
      return timed.conversation().memory().peak;
    };
  });
  return interleavedMedians(samplers, 3, 1);
}

std::vector<double> programSize(const Setting& setting) {
  std::vector<double> sizes;
  std::ranges::transform(setting.contestants, std::back_inserter(sizes), strippedSize);
  return sizes;
}

struct MeasureKind {
  std::string what;
  Unit unit;
  std::function<std::vector<double>(Setting&)> take;
};

std::vector<MeasureKind> measureKinds() {
  std::vector<MeasureKind> kinds{
      {"start to first reply (initialize)", Unit::time, startToFirstReply},
      {"tools/list round trip", Unit::time, toolsList}};
  for (const NamedCall& named : namedCalls()) {
    const auto take = [named](Setting& setting) { return toolCall(setting, named); };
    kinds.push_back({named.what, Unit::time, take});
  }
  kinds.push_back({"resident memory, idle", Unit::memory, idleMemory});
  kinds.push_back({"resident memory, peak after ten 4 MB replies", Unit::memory, peakMemory});
  kinds.push_back({"program, stripped", Unit::memory, programSize});
  return kinds;
}

}  // namespace

std::vector<Measure> takeMeasures(Setting& setting, std::string_view words) {
  std::vector<Measure> measures;
  for (const MeasureKind& kind : measureKinds()) {
    if (!kind.what.contains(words)) continue;
    measures.push_back({.what = kind.what, .unit = kind.unit, .values = kind.take(setting)});
  }
  return measures;
}

void checkAnswers(Setting& setting) {
  const std::vector<NamedCall> calls = namedCalls();
  for (const Contestant& contestant : setting.contestants) {
    Conversation conversation(contestant, setting.home());
    checkInitialize(contestant, conversation.initialize());
    checkToolsList(contestant, conversation.ask(listLine));
    for (const NamedCall& named : calls) TimedCall(setting, contestant, named.call).run();
  }
}
