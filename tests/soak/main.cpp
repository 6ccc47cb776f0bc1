// Drives the built server with a great many requests against an application that misbehaves on
// a fixed schedule, and checks that each is answered once, rightly and in its turn, and that
// the server holds no more of the machine at the end than after it had warmed up.
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

/// By then there has been each kind of request, the longest included.
constexpr std::size_t leastWarmUp = 12'000;

/// It varies by less, as far as ever seen, when looked at after small requests: the room of big
/// messages is kept or given back by fixed rules. A loss of five bytes at every request shows in
/// a run of a million.
constexpr double mostGrowth = 4 << 20;

void check(bool holds, const std::string& otherwise) {
  if (!holds) throw std::runtime_error(otherwise);
}

class Soak {
 public:
  Soak() : server_(started()), app_(mounted_) { EndpointFile(home_).publish(app_.port()); }

  void run(std::size_t requests) {
    const std::size_t warmUp = std::max(leastWarmUp, requests / 10);
    check(requests > warmUp, "that is too few requests");
    const auto start = Clock::now();
    ProcessState warm;
    for (std::size_t number = 1; number <= requests; ++number) {
      take(soakRequest(number));
      if (number != warmUp && number != requests && number % (requests / 10) != 0) continue;
      hearAll();
      const ProcessState now = report(number, Clock::now() - start);
      if (number == warmUp) warm = now;
      if (number > warmUp) checkFlat(warm, now);
    }
    end();
    std::printf("%zu requests answered; the application had %zu calls; launches: %s\n", requests,
                app_.calls(), mounted_ ? "one in a thousand probes" : "none, mounts are refused");
  }

 private:
  /// With a tool for launching that does nothing, if there may be one: the application runs.
  std::unique_ptr<ServerProcess> started() {
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

  /// Sends together what fits into the pipe, and what is longer by itself, and hears the replies
  /// before there is more: so neither side ever waits for the other to read.
  void take(SoakRequest next) {
    constexpr std::size_t batch = 32'000;
    const std::string text = next.unanswered + next.line;
    if (lines_.size() + text.size() > batch) hearAll();
    lines_ += text;
    next.line.clear();
    awaited_.push_back(std::move(next));
  }

  void hearAll() {
    server_->send(lines_);
    lines_.clear();
    for (const SoakRequest& asked : awaited_) hear(asked);
    awaited_.clear();
  }

  void hear(const SoakRequest& asked) {
    const auto line = server_->readLine(std::chrono::seconds(60));
    check(line.has_value(), "no reply to " + asked.id);
    const json reply = json::parse(*line);
    const std::string got = line->substr(0, 500);
    check(reply.size() == 3 && reply.at("jsonrpc") == "2.0", "not a reply: " + got);
    check(reply.at("id").dump() == asked.id, "awaited " + asked.id + ", got " + got);
    if (!asked.error.empty()) {
      check(reply.at("error").dump() == asked.error, "another error: " + got);
    } else if (asked.result == "any") {
      check(reply.at("result").at("tools").size() == 11, "another list: " + got);
    } else {
      check(reply.at("result").dump() == asked.result, "another result: " + got);
    }
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
    check(now.descriptors == warm.descriptors, "the number of descriptors has changed");
    check(now.threads == warm.threads, "the number of threads has changed");
    check(now.children == 0, "children have been left behind");
#if !UNDER_ADDRESS_SANITIZER && !UNDER_THREAD_SANITIZER  // they keep what was given back
    check(now.residentBytes < warm.residentBytes + mostGrowth, "the memory has grown");
#endif
  }

  void end() {
    server_->closeInput();
    check(server_->waitForExit().code == 0, "the server did not end with status 0");
    check(server_->unreadOutput().empty(), "there was more output than replies");
    check(server_->standardError().empty(), "standard error: " + server_->standardError());
  }

  TemporaryHome home_;
  bool mounted_ = false;
  std::unique_ptr<ServerProcess> server_;
  MisbehavingApp app_;
  std::string lines_;
  std::vector<SoakRequest> awaited_;
};

}  // namespace

int main(int count, char** arguments) {
  std::signal(SIGPIPE, SIG_IGN);
  try {
    check(count == 2, "how many requests?");
    Soak().run(std::stoul(arguments[1]));
    return EXIT_SUCCESS;
  } catch (const std::exception& failed) {
    std::fprintf(stderr, "quillmark_soak: %s\n", failed.what());
    return EXIT_FAILURE;
  }
}
