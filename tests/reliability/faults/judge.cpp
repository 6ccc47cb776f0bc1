#include "tests/reliability/faults/judge.h"

#include <algorithm>
#include <csignal>
#include <initializer_list>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "tests/reliability/faults/trace.h"
#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

std::string beginningOf(std::string_view text) {
  return std::string(text.substr(0, 300));
}

class Judge {
 public:
  Judge(const Session& session, const RightAnswers& right, const std::vector<Fault>& faults,
        const Observed& observed)
      : session_(session),
        right_(right),
        faults_(faults),
        observed_(observed),
        injected_(injectedIn(observed.trace)) {}

  Verdict verdict() && {
    verdict_.injected = injected_.count;
    judgeEnd();
    const Lines lines = linesOf(observed_.output);
    for (const std::string& line : lines.whole) judgeLine(line);
    judgeUnterminated(lines.unterminated);
    skipTo(session_.asked.size());
    judgeLaunches();
    return std::move(verdict_);
  }

 private:
  void require(bool holds, const std::string& otherwise) {
    if (!holds) verdict_.violations.push_back(otherwise);
  }

  [[nodiscard]] bool may(Effect effect) const {
    return std::ranges::any_of(faults_, [&](const Fault& it) { return it.row->effect == effect; });
  }

  /// Whether a fault with one of these effects may have hit this request, a tool call.
  [[nodiscard]] bool wasHit(std::size_t index, std::initializer_list<Effect> effects) const {
    return index < session_.asked.size() && session_.asked[index].isCall &&
           injected_.during.contains(index) &&
           std::ranges::any_of(effects, [&](Effect effect) { return may(effect); });
  }

  void judgeEnd() {
    require(observed_.ended, "the server hangs");
    require(observed_.standardError.empty(), "standard error: " + observed_.standardError);
    verdict_.aborted = observed_.exit.signal == SIGABRT && may(Effect::processAborts);
    require(observed_.exit.code == 0 || verdict_.aborted || !observed_.ended,
            "status " + std::to_string(observed_.exit.code.value_or(-1)) + ", signal " +
                std::to_string(observed_.exit.signal.value_or(0)));
  }

  /// Every line must be the answer to a request after those answered so far.
  void judgeLine(const std::string& line) {
    const auto rest = right_.lines.begin() + static_cast<std::ptrdiff_t>(next_);
    const auto found = std::find(rest, right_.lines.end(), line);
    if (found != right_.lines.end()) {
      return judgeRight(static_cast<std::size_t>(found - right_.lines.begin()));
    }
    const json reply = json::parse(line, nullptr, false);
    if (!reply.is_object()) return require(false, "not a JSON object: " + beginningOf(line));
    const json id = reply.value("id", json());
    if (!id.is_number_unsigned() || id < next_ + 1 || id > session_.asked.size()) {
      return require(false, "not expected now: " + beginningOf(line));
    }
    judgeFailed(id.get<std::size_t>() - 1, reply.value("result", json()));
  }

  void judgeRight(std::size_t index) {
    skipTo(index);
    next_ = index + 1;
    require(!session_.asked[index].isCall || callsOf(index) == 1, timesSeen(index));
  }

  void judgeFailed(std::size_t index, const json& result) {
    skipTo(index);
    next_ = index + 1;
    verdict_.callFailed = true;
    require(wasHit(index, {Effect::callFails, Effect::processAborts}),
            "a wrong answer: " + beginningOf(result.dump()));
    if (result == errorResult(couldNotBeStarted)) {
      require(callsOf(index) == 0, timesSeen(index) + ", although it could not be started");
    } else {
      require(result == errorResult(unreadableReply) || result == errorResult(noResponse),
              "another sentence: " + beginningOf(result.dump()));
      require(callsOf(index) <= 1, timesSeen(index));
    }
  }

  /// The requests before this one that have no answer yet never get one.
  void skipTo(std::size_t index) {
    const bool outputEnded = verdict_.aborted || cutOff_ || may(Effect::inputEnds);
    for (; next_ < index; ++next_) {
      verdict_.repliesLost = true;
      const bool lost = may(Effect::replyLost) && injected_.during.contains(next_);
      require(outputEnded || lost, "no answer to request " + std::to_string(next_ + 1));
      require(callsOf(next_) <= 1, timesSeen(next_));
    }
  }

  /// A line without its end: its line feed or more could not be written, and nothing follows.
  void judgeUnterminated(const std::string& line) {
    if (line.empty()) return;
    require(may(Effect::replyLost), "cut off: " + beginningOf(line));
    cutOff_ = true;
    const auto isBeginning = [&](const std::string& whole) { return whole.starts_with(line); };
    require(std::ranges::any_of(right_.lines, isBeginning), "a wrong end: " + beginningOf(line));
  }

  /// At most one for each call that may have found the application missing.
  void judgeLaunches() {
    const auto firstCall = std::ranges::find(session_.asked, true, &Asked::isCall);
    std::set<std::size_t> calls;
    if (right_.launches > 0) {
      calls.insert(static_cast<std::size_t>(firstCall - session_.asked.begin()));
    }
    for (const std::size_t index : injected_.during) {
      if (wasHit(index, {Effect::appLaunched, Effect::callFails, Effect::processAborts})) {
        calls.insert(index);
      }
    }
    require(observed_.launches <= calls.size(), std::to_string(observed_.launches) + " launches");
  }

  [[nodiscard]] std::size_t callsOf(std::size_t index) const {
    const auto found = observed_.calls.find(index + 1);
    return found == observed_.calls.end() ? 0 : found->second;
  }

  [[nodiscard]] std::string timesSeen(std::size_t index) const {
    return "the application got call " + std::to_string(index + 1) + " " +
           std::to_string(callsOf(index)) + " times";
  }

  const Session& session_;
  const RightAnswers& right_;
  const std::vector<Fault>& faults_;
  const Observed& observed_;
  Injected injected_;
  Verdict verdict_;
  std::size_t next_ = 0;  // the first request that is not answered yet
  bool cutOff_ = false;
};

}  // namespace

Verdict judge(const Session& session, const RightAnswers& right, const std::vector<Fault>& faults,
              const Observed& observed) {
  return Judge(session, right, faults, observed).verdict();
}
