#include "tests/reliability/faults/right_answers.h"

#include <stdexcept>

#include "tests/reliability/faults/judge.h"

namespace {

using nlohmann::json;

bool isRight(const std::string& line, std::size_t id, const json& result) {
  const json reply = json::parse(line);
  if (reply.at("jsonrpc") != "2.0" || reply.at("id") != id) return false;
  return result.is_null() || reply.value("result", json()) == result ||
         reply.value("error", json()) == result;
}

[[noreturn]] void fail(const Session& session, const std::string& reason) {
  throw std::runtime_error(std::string(session.name) + ", without faults: " + reason);
}

}  // namespace

Lines linesOf(std::string_view output) {
  Lines lines;
  for (std::size_t end = 0; (end = output.find('\n')) != std::string_view::npos;) {
    lines.whole.emplace_back(output.substr(0, end));
    output.remove_prefix(end + 1);
  }
  lines.unterminated = output;
  return lines;
}

RightAnswers rightAnswers(const Session& session, const Observed& observed) {
  RightAnswers right{.lines = linesOf(observed.output).whole, .launches = observed.launches};
  if (right.lines.size() != session.asked.size()) {
    fail(session, "not one answer to each request: " + observed.output.substr(0, 300) +
                      ", standard error: " + observed.standardError);
  }
  for (std::size_t i = 0; i < right.lines.size(); ++i) {
    if (!isRight(right.lines[i], i + 1, session.asked[i].result)) {
      fail(session, "a wrong answer: " + right.lines[i].substr(0, 300));
    }
  }
  const Verdict verdict = judge(session, right, {}, observed);
  if (!verdict.violations.empty()) fail(session, verdict.violations.front());
  return right;
}
