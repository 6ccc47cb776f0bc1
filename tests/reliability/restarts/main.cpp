// Kills and restarts the application, and stops and continues the server, at random moments, while
// a host makes one call after the other. Several servers with their own applications side by side.
//
//   quillmark_restarts SERVER APP RESTARTS

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "tests/reliability/recorded_open.h"
#include "tests/reliability/restarts/chaos.h"
#include "tests/reliability/restarts/history.h"
#include "tests/reliability/restarts/host.h"
#include "tests/support/temporary_home.h"

namespace {

/// What is tried, and the application for it.
struct Programs {
  std::string server;
  std::string app;
};

/// One server, its host and its application, until the application was restarted that often.
History historyOf(const RecordedOpen& open, const Programs& programs, std::size_t restarts,
                  unsigned seed) {
  const TemporaryHome home;
  std::filesystem::create_directories(home.home() / "Library/Application Support/Quillmark");
  Chaos chaos(home, programs.app, seed);
  chaos.startApp();
  ServerSetup setup;
  setup.command = {programs.server};
  setup.overUsrBin = open.folder();
  ServerProcess server(home, setup);
  Host host(server, seed);
  std::atomic<bool> done = false;
  std::exception_ptr failed;
  std::jthread killer([&] {
    try {
      for (std::size_t i = 0; i < restarts; ++i) chaos.restartApp(server.pid());
    } catch (...) {
      failed = std::current_exception();
    }
    done = true;
  });
  while (!done) host.call();
  host.call();
  killer.join();
  if (failed) std::rethrow_exception(failed);
  server.closeInput();
  if (server.waitForExit().code != 0) throw std::runtime_error("the server did not end with 0");
  if (!server.unreadOutput().empty()) throw std::runtime_error("more output than answers");
  if (!server.standardError().empty()) throw std::runtime_error(server.standardError());
  chaos.killApp();
  return {.calls = host.calls(),
          .restarts = chaos.restarts(),
          .stops = chaos.stops(),
          .carriedOut = chaos.records().carriedOut(),
          .launches = RecordedOpen::launches(home)};
}

/// The findings of all servers together.
class Total {
 public:
  void add(const History& history, const Findings& findings) {
    const std::lock_guard lock(mutex_);
    restarts_ += history.restarts.size();
    stops_ += history.stops.size();
    calls_ += history.calls.size();
    launches_ += history.launches;
    succeeded_ += findings.succeeded;
    for (const Call& call : history.calls) ++failures_[call.failure];
    add(sentAfter_, findings.sentAfter);
    add(withoutFile_, findings.withoutFile);
    add(deadPort_, findings.deadPort);
    for (const std::string& violation : findings.violations) note(violation);
  }

  void addViolation(const std::string& violation) {
    const std::lock_guard lock(mutex_);
    note(violation);
  }

  bool print() {
    failures_.erase("");
    std::printf("%zu restarts, %zu stops, %zu launches, %zu calls, of which %zu succeeded\n",
                restarts_, stops_, launches_, calls_, succeeded_);
    for (const auto& [text, count] : failures_) std::printf("%8zu %s\n", count, text.c_str());
    print("sent after the application was back", sentAfter_);
    print("waiting for it, without an endpoint file", withoutFile_);
    print("waiting for it, the file naming a dead port", deadPort_);
    std::printf("%zu violations\n", violations_);
    return violations_ == 0;
  }

 private:
  void note(const std::string& violation) {
    std::printf("VIOLATION: %s\n", violation.c_str());
    ++violations_;
  }

  static void add(Delays& sum, const Delays& more) {
    sum.counted += more.counted;
    sum.longest = std::max(sum.longest, more.longest);
  }

  static void print(std::string_view what, const Delays& delays) {
    std::printf("first calls %.*s: %zu, longest %.3f s\n", static_cast<int>(what.size()),
                what.data(), delays.counted, delays.longest.count());
  }

  std::mutex mutex_;
  std::size_t restarts_ = 0;
  std::size_t stops_ = 0;
  std::size_t calls_ = 0;
  std::size_t launches_ = 0;
  std::size_t succeeded_ = 0;
  std::size_t violations_ = 0;
  std::map<std::string, std::size_t> failures_;
  Delays sentAfter_;
  Delays withoutFile_;
  Delays deadPort_;
};

bool soak(const Programs& programs, std::size_t restarts) {
  constexpr unsigned servers = 32;
  const RecordedOpen open;
  Turns turns;
  Total total;
  {
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= servers; ++seed) {
      threads.emplace_back([&, seed] {
        try {
          const History history =
              historyOf(open, programs, (restarts + servers - 1) / servers, seed);
          total.add(history, judge(history, turns.missed()));
        } catch (const std::exception& failed) {
          total.addViolation(failed.what());
        }
      });
    }
  }
  std::printf("%zu moments of 20 ms and more in which the machine was busy\n",
              turns.missed().size());
  return total.print();
}

}  // namespace

int main(int count, char** arguments) {
  std::signal(SIGPIPE, SIG_IGN);
  try {
    if (count != 4) throw std::runtime_error("which server and application, how many restarts?");
    const Programs programs{.server = arguments[1], .app = arguments[2]};
    return soak(programs, std::stoul(arguments[3])) ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& failed) {
    std::fprintf(stderr, "quillmark_restarts: %s\n", failed.what());
    return EXIT_FAILURE;
  }
}
