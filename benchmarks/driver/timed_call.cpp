#include "benchmarks/driver/timed_call.h"

#include <stdexcept>

#include "benchmarks/driver/checks.h"
#include "benchmarks/driver/clock.h"

TimedCall::TimedCall(Setting& setting, const Contestant& contestant, const ToolCall& call)
    : setting_(setting),
      contestant_(contestant),
      call_(call),
      conversation_(contestant, setting.home()) {
  conversation_.initialize();
  setting_.application.expect({.probeReply = probeReply, .callReply = call_.reply});
  checkedAnswer_ = conversation_.ask(call_.line);
  check(checkedAnswer_);
  checkedProbe_ = setting_.application.request(0);
  checkedRequest_ = setting_.application.request(1);
}

double TimedCall::run() {
  setting_.application.expect({.probeReply = probeReply,
                               .callReply = call_.reply,
                               .probeLength = checkedProbe_.size(),
                               .callLength = checkedRequest_.size()});
  const Clock clock;
  const std::string_view answer = conversation_.ask(call_.line);
  const double elapsed = clock.nanoseconds();

  const bool asBefore = answer == checkedAnswer_ && setting_.application.requestCount() == 2 &&
                        setting_.application.request(0) == checkedProbe_ &&
                        setting_.application.request(1) == checkedRequest_;
  if (!asBefore) check(answer);
  return elapsed;
}

void TimedCall::check(std::string_view answer) {
  const StandInApplication& application = setting_.application;
  if (application.requestCount() != 2) {
    throw std::runtime_error(contestant_.name + ": not two requests in one call");
  }
  checkRequests(contestant_, application.request(0), application.request(1), call_,
                setting_.token());
  checkToolAnswer(contestant_, answer, call_);
}
