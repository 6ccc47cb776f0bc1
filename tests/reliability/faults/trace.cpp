#include "tests/reliability/faults/trace.h"

#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace {

/// The first call of main(): it looks for missing standard streams.
constexpr std::string_view firstOfMain = "fcntl(0<";

/// A line of a trace without the number of its process or thread.
struct TraceLine {
  std::string task;
  std::string text;
};

std::vector<TraceLine> linesOf(const std::string& trace) {
  std::vector<TraceLine> lines;
  std::istringstream in(trace);
  for (std::string line; std::getline(in, line);) {
    const std::size_t digits = line.find_first_not_of("0123456789");
    const std::size_t text = line.find_first_not_of(' ', digits == std::string::npos ? 0 : digits);
    if (text == std::string::npos) continue;
    lines.push_back({.task = line.substr(0, digits), .text = line.substr(text)});
  }
  return lines;
}

/// Numbers the calls of one task, each name by itself.
class Numbers {
 public:
  /// The number of the call that the line shows; 0 for a signal, an exit, and the second half of a
  /// line that was interrupted.
  std::size_t next(const TraceLine& line) {
    const std::size_t end = line.text.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_");
    if (end == std::string::npos || line.text[end] != '(') return 0;
    return ++numbers_[line.text.substr(0, end)];
  }

 private:
  std::map<std::string, std::size_t> numbers_;
};

const std::regex& compiled(const FaultRow& row) {
  static std::map<const FaultRow*, std::regex> all;
  const auto [place, isNew] = all.try_emplace(&row);
  if (isNew) place->second = std::regex(row.pattern.begin(), row.pattern.end());
  return place->second;
}

void append(std::vector<Fault>& faults, const TraceLine& line, std::size_t number,
            Fault::Where where) {
  bool known = false;
  for (const FaultRow& row : faultTable()) {
    if (!std::regex_search(line.text, compiled(row))) continue;
    known = true;
    for (const std::string& injection : row.injections) {
      faults.push_back({&row, injection, number, where});
    }
  }
  if (!known) throw std::runtime_error("not in the table of faults: " + line.text);
}

bool contains(const TraceLine& line, std::string_view words) {
  return line.text.find(words) != std::string::npos;
}

/// The tasks that end by calling execve: children on their way to `open`.
std::set<std::string> launchedChildren(const std::vector<TraceLine>& lines) {
  std::set<std::string> tasks;
  for (const TraceLine& line : lines) {
    if (line.text.starts_with("execve(") && line.task != lines.front().task) {
      tasks.insert(line.task);
    }
  }
  return tasks;
}

}  // namespace

std::vector<Fault> faultsOf(const std::string& wholeTrace) {
  const std::vector<TraceLine> lines = linesOf(wholeTrace);
  if (lines.empty()) throw std::runtime_error("an empty trace");
  const std::set<std::string> children = launchedChildren(lines);
  std::map<std::string, Numbers> numbers;  // by task
  std::vector<Fault> faults;
  bool inMain = false;
  for (const TraceLine& line : lines) {
    const bool isMainThread = line.task == lines.front().task;
    if (!isMainThread && !children.contains(line.task)) continue;
    const std::size_t number = numbers[line.task].next(line);
    inMain = inMain || line.text.starts_with(firstOfMain);
    const auto where = isMainThread ? Fault::Where::mainThread : Fault::Where::launchedChild;
    if (inMain && number > 0) append(faults, line, number, where);
  }
  if (faults.empty()) throw std::runtime_error("the start of main() is not in the trace");
  return faults;
}

std::vector<Fault> faultsOfBackgroundThread(const std::string& trace) {
  Numbers numbers;
  std::vector<Fault> faults;
  for (const TraceLine& line : linesOf(trace)) {
    const std::size_t number = numbers.next(line);
    if (number > 0) append(faults, line, number, Fault::Where::backgroundThread);
  }
  return faults;
}

Injected injectedIn(const std::string& trace) {
  constexpr std::size_t mostRequests = 16;
  Injected injected;
  std::size_t request = 0;
  bool repliesCount = true;  // each request but the last has had its reply
  for (const TraceLine& line : linesOf(trace)) {
    const bool isRetried = contains(line, "= -1 EAGAIN") || contains(line, "= -1 EINTR");
    const bool startsReply = line.text.starts_with(R"(write(1, "{\"jsonrpc\")");
    const bool endsReply = line.text.starts_with(R"(write(1, "\n")");
    if (contains(line, "(INJECTED)")) {
      ++injected.count;
      injected.during.insert(endsReply ? request - 1 : request);
      // Otherwise any later request may be the one.
      for (std::size_t i = request; !repliesCount && i < mostRequests; ++i) {
        injected.during.insert(i);
      }
    }
    if (startsReply && !isRetried) ++request;
    const bool writesMiddle = line.text.starts_with("write(") && !startsReply && !endsReply;
    const bool losesRequests = line.text.starts_with("read(") || writesMiddle;
    if (losesRequests && contains(line, "= -1 E") && !isRetried) repliesCount = false;
  }
  return injected;
}
