#include "benchmarks/driver/measures.h"

#include <algorithm>
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

NamedCall namedSmallCall() {
  return {.what = "tools/call, 300-byte reply", .call = smallCall(), .samplesPerRound = 20};
}

std::vector<NamedCall> namedBigCalls() {
  std::vector<NamedCall> calls;
  const auto add = [&calls](const char* what, ToolCall call, int samplesPerRound) {
    calls.push_back({.what = what, .call = std::move(call), .samplesPerRound = samplesPerRound});
  };
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

Measure startToFirstReply(Setting& setting) {
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    timeStart(setting, contestant);  // so that the program's file is at hand
    return [&] { return timeStart(setting, contestant); };
  });
  return {.what = "start to first reply (initialize)",
          .unit = Unit::time,
          .values = interleavedMedians(samplers, 10 * setting.rounds, 1)};
}

double timeList(Conversation& conversation, const Contestant& contestant,
                std::string_view checked) {
  const Clock clock;
  const std::string_view answer = conversation.ask(listLine);
  const double elapsed = clock.nanoseconds();
  if (answer != checked) checkToolsList(contestant, answer);
  return elapsed;
}

Measure toolsList(Setting& setting) {
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    const auto conversation = std::make_shared<Conversation>(contestant, setting.home());
    conversation->initialize();
    const std::string checked(conversation->ask(listLine));
    checkToolsList(contestant, checked);
    return [=, &contestant] { return timeList(*conversation, contestant, checked); };
  });
  return {.what = "tools/list round trip",
          .unit = Unit::time,
          .values = interleavedMedians(samplers, setting.rounds, 20)};
}

Measure toolCall(Setting& setting, const NamedCall& named) {
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    const auto timed = std::make_shared<TimedCall>(setting, contestant, named.call);
    return [timed] { return timed->run(); };
  });
  return {.what = named.what,
          .unit = Unit::time,
          .values = interleavedMedians(samplers, setting.rounds, named.samplesPerRound)};
}

Measure idleMemory(Setting& setting) {
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    return [&] {
      Conversation conversation(contestant, setting.home());
      conversation.initialize();
      return conversation.memory().now;
    };
  });
  return {.what = "resident memory, idle",
          .unit = Unit::memory,
          .values = interleavedMedians(samplers, 5, 1)};
}

Measure peakMemory(Setting& setting) {
  const ToolCall call = longTextReply(4'000'000);
  const auto samplers = samplersFor(setting.contestants, [&](const Contestant& contestant) {
    return [&] {
      TimedCall timed(setting, contestant, call);
      for (int calls = 1; calls < 10; ++calls) timed.run();
      return timed.conversation().memory().peak;
    };
  });
  return {.what = "resident memory, peak after ten 4 MB replies",
          .unit = Unit::memory,
          .values = interleavedMedians(samplers, 3, 1)};
}

Measure programSize(const Setting& setting) {
  Measure measure{.what = "program, stripped", .unit = Unit::memory, .values = {}};
  std::ranges::transform(setting.contestants, std::back_inserter(measure.values), strippedSize);
  return measure;
}

}  // namespace

std::vector<Measure> takeMeasures(Setting& setting) {
  std::vector<Measure> measures{startToFirstReply(setting)};
  {
    const Placement placement(setting.application.thread());
    measures.push_back(toolsList(setting));
    measures.push_back(toolCall(setting, namedSmallCall()));
  }
  for (const NamedCall& named : namedBigCalls()) measures.push_back(toolCall(setting, named));
  measures.push_back(idleMemory(setting));
  measures.push_back(peakMemory(setting));
  measures.push_back(programSize(setting));
  return measures;
}

void checkAnswers(Setting& setting) {
  std::vector<NamedCall> calls = namedBigCalls();
  calls.push_back(namedSmallCall());
  for (const Contestant& contestant : setting.contestants) {
    Conversation conversation(contestant, setting.home());
    checkInitialize(contestant, conversation.initialize());
    checkToolsList(contestant, conversation.ask(listLine));
    for (const NamedCall& named : calls) TimedCall(setting, contestant, named.call).run();
  }
}
