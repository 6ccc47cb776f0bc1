#include "tests/reliability/restarts/history.h"

#include <algorithm>
#include <map>

#include "tests/support/conversation.h"

namespace {

using namespace std::chrono_literals;

/// Applications that carried out a call, by the call's number.
using Carriers = std::map<std::size_t, std::vector<std::string>>;

class Judge {
 public:
  Judge(const History& history, const std::vector<Interval>& missed)
      : history_(history), missed_(missed) {}

  Findings findings() && {
    for (const CarriedOut& one : history_.carriedOut) carriers_[one.number].push_back(one.token);
    for (const Call& call : history_.calls) judgeCall(call);
    for (std::size_t i = 0; i < history_.restarts.size(); ++i) judgeRestart(i);
    return std::move(findings_);
  }

 private:
  void require(bool holds, std::size_t call, const std::string& otherwise) {
    if (!holds) findings_.violations.push_back("call " + std::to_string(call) + ": " + otherwise);
  }

  void judgeCall(const Call& call) {
    const std::vector<std::string>& carriers = carriers_[call.number];
    require(carriers.size() <= 1, call.number, "carried out twice");
    if (call.by) {
      ++findings_.succeeded;
      require(carriers == std::vector{*call.by}, call.number, "answered, but not carried out");
    } else if (call.failure == couldNotBeStarted || call.failure == "wrong token") {
      require(carriers.empty(), call.number, "carried out, although: " + call.failure);
    } else {
      require(call.failure == unreadableReply || call.failure == noResponse, call.number,
              "another sentence: " + call.failure);
    }
  }

  void judgeRestart(std::size_t index) {
    const Restart& restart = history_.restarts[index];
    const auto back = restart.back.at;
    const auto first = std::ranges::find_if(history_.calls, [&](const Call& call) {
      return call.time.begin >= restart.gone && call.time.end > back;
    });
    if (first == history_.calls.end()) return;
    const Interval waiting{std::max(back, first->time.begin), first->time.end};
    const bool isLast = index + 1 == history_.restarts.size();
    const bool goneAgain = !isLast && history_.restarts[index + 1].killed < waiting.end;
    if (goneAgain || wasDisturbed(waiting)) return;
    if (first->time.begin >= back) {
      count(findings_.sentAfter, *first, waiting, 0.5s);
    } else if (restart.fileWasRemoved) {
      count(findings_.withoutFile, *first, waiting, 0.5s);
    } else {
      // A probe of the dead port is never cut short: 3 seconds, and the pause of 0.4.
      count(findings_.deadPort, *first, waiting, 3.5s);
    }
  }

  [[nodiscard]] bool wasDisturbed(const Interval& time) const {
    const auto overlaps = [&](const Interval& other) { return time.overlaps(other); };
    return std::ranges::any_of(history_.stops, overlaps) || std::ranges::any_of(missed_, overlaps);
  }

  void count(Delays& delays, const Call& call, const Interval& waiting,
             std::chrono::duration<double> limit) {
    const std::chrono::duration<double> took = waiting.end - waiting.begin;
    ++delays.counted;
    delays.longest = std::max(delays.longest, took);
    require(call.by.has_value(), call.number, "failed, although it is back: " + call.failure);
    require(took <= limit, call.number, "took " + std::to_string(took.count()) + " s");
  }

  const History& history_;
  const std::vector<Interval>& missed_;
  Carriers carriers_;
  Findings findings_;
};

}  // namespace

Findings judge(const History& history, const std::vector<Interval>& missed) {
  return Judge(history, missed).findings();
}
