// Sends the built server very many requests, with an application that misbehaves on a fixed
// schedule. Each request must be answered once, correctly and in order, and the server must not use
// more memory, descriptors or threads at the end than after a warm-up.
//
//   quillmark_soak REQUESTS

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/soak/misbehaving_app.h"
#include "tests/soak/process_state.h"
#include "tests/soak/requests.h"
#include "tests/support/conversation.h"
#include "tests/support/private_mounts.h"
#include "tests/support/sanitizers.h"

namespace {

using nlohmann::json;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

/// By then there has been each kind of request.
constexpr std::size_t leastWarmUp = 12'000;

/// More than the memory in use has ever varied after small requests. In a run of a million
/// requests, a leak of five bytes per request exceeds it.
constexpr double mostGrowth = 4 << 20;

void check(bool condition, const std::string& problem) {
  if (!condition) throw std::runtime_error(problem);
}

class Soak {
 public:
  Soak() : server_(start()), app_(mounted_) { EndpointFile(home_).publish(app_.port()); }

  void run(std::size_t requests) {
    const std::size_t warmUp = std::max(leastWarmUp, requests / 10);
    check(requests > warmUp, "too few requests");
    const auto start = Clock::now();
    ProcessState warm;
    for (std::size_t number = 1; number <= requests; ++number) {
      send(soakRequest(number));
      if (number != warmUp && number != requests && number % (requests / 10) != 0) continue;
      finishBatch();
      const ProcessState now = report(number, Clock::now() - start);
      if (number == warmUp) warm = now;
      if (number > warmUp) checkFlat(warm, now);
    }
    end();
    std::printf("%zu requests answered; the application had %zu calls; launches: %s\n", requests,
                app_.calls(), mounted_ ? "one in a thousand probes" : "none");
  }

 private:
  /// Replaces `open` by a program that does nothing, because the application runs. Where the system
  /// does not allow that, every probe is answered, so that nothing is launched.
  std::unique_ptr<ServerProcess> start() {
    const fs::path folder = home_.folder() / "launching";
    fs::create_directory(folder);
    fs::create_symlink("/usr/bin/true", folder / "open");
    ServerSetup setup;
    setup.overUsrBin = folder;
    try {
      auto server = std::make_unique<ServerProcess>(home_, setup);
      mounted_ = true;
      return server;
    } catch (const PrivateMountsRefused&) {
      return std::make_unique<ServerProcess>(home_);
    }
  }

  /// Collects requests that fit into the pipe together and receives their replies before it sends
  /// more, so that neither side waits for the other to read. A longer request is a batch of its
  /// own.
  void send(SoakRequest next) {
    constexpr std::size_t batch = 32'000;
    const std::string text = next.unanswered + next.line;
    if (lines_.size() + text.size() > batch) finishBatch();
    lines_ += text;
    next.line.clear();
    expected_.push_back(std::move(next));
  }

  void finishBatch() {
    server_->send(lines_);
    lines_.clear();
    for (const SoakRequest& asked : expected_) checkReply(asked);
    expected_.clear();
  }

  void checkReply(const SoakRequest& asked) {
    const auto line = server_->readLine();
    check(line.has_value(), "no reply to " + asked.id);
    const json reply = json::parse(*line);
    const std::string shown = line->substr(0, 500);
    check(reply.size() == 3 && reply.at("jsonrpc") == "2.0", "not a reply: " + shown);
    check(reply.at("id").dump() == asked.id, "expected " + asked.id + ", received " + shown);
    if (!asked.error.empty()) {
      check(reply.at("error").dump() == asked.error, "another error: " + shown);
    } else if (asked.result == "any") {
      check(reply.at("result").at("tools").size() == 11, "another list: " + shown);
    } else {
      checkResult(asked, reply.at("result"));
    }
  }

  void checkResult(const SoakRequest& asked, const json& result) {
    const bool isExpected = result.dump() == asked.result;
    const bool isUnreadable = result == errorResult(unreadableReply);
    check(isExpected || (asked.isCall && isUnreadable), "another result: " + result.dump());
    const bool wasLate = asked.isCall && app_.wasLate();
    check(isExpected || wasLate, "unreadable, expected " + asked.result);
  }

  ProcessState report(std::size_t number, std::chrono::duration<double> took) {
    const ProcessState now = stateOf(server_->pid());
    std::printf(
        "%8zu requests %7.1f s %7.1f MiB resident, %zu descriptors, %zu threads, "
        "%zu children\n",
        number, took.count(), now.residentBytes / (1 << 20), now.descriptors, now.threads,
        now.children);
    std::fflush(stdout);
    return now;
  }

  static void checkFlat(const ProcessState& warm, const ProcessState& now) {
    check(now.descriptors == warm.descriptors, "the number of descriptors changed");
    check(now.threads == warm.threads, "the number of threads changed");
    check(now.children == 0, "there are child processes");
#if !UNDER_ADDRESS_SANITIZER && !UNDER_THREAD_SANITIZER  // they keep freed memory
    check(now.residentBytes < warm.residentBytes + mostGrowth, "the memory in use grew");
#endif
  }

  void end() {
    server_->closeInput();
    check(server_->waitForExit().code == 0, "the server did not exit with status 0");
    check(server_->unreadOutput().empty(), "there was output after the last reply");
    check(server_->standardError().empty(), "standard error: " + server_->standardError());
  }

  TemporaryHome home_;
  bool mounted_ = false;
  std::unique_ptr<ServerProcess> server_;
  MisbehavingApp app_;
  std::string lines_;
  std::vector<SoakRequest> expected_;
};

}  // namespace

int main(int count, char** arguments) {
  std::signal(SIGPIPE, SIG_IGN);
  try {
    check(count == 2, "usage: quillmark_soak REQUESTS");
    Soak().run(std::stoul(arguments[1]));
    return EXIT_SUCCESS;
  } catch (const std::exception& failed) {
    std::fprintf(stderr, "quillmark_soak: %s\n", failed.what());
    return EXIT_FAILURE;
  }
}
