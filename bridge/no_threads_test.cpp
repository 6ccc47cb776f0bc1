#include "tests/support/sanitizers.h"

// On macOS this limit does not count threads. ThreadSanitizer ends a forked process that starts a
// thread.
#if defined(__linux__) && !UNDER_THREAD_SANITIZER

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <thread>

#include "bridge/exchange.h"
#include "bridge/launch.h"
#include "tests/support/scripts.h"
#include "tests/unit/as_bytes.h"

namespace {

using namespace std::chrono_literals;

/// From now on this process can start neither a thread nor a child. The limit does not apply to
/// root, so the process gives up being root.
bool giveUpThreads() {
  constexpr uid_t nobody = 65534;
  const rlimit none{.rlim_cur = 0, .rlim_max = 0};
  if (::setrlimit(RLIMIT_NPROC, &none) != 0) return false;
  if (::getuid() == 0 && ::setuid(nobody) != 0) return false;
  try {
    std::thread([] {}).join();
  } catch (const std::system_error&) {
    return true;
  }
  return false;
}

/// The exit status of a child process that could not set the limit.
constexpr int couldNotTry = 77;

class NoThreads : public testing::Test {
 protected:
  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }

  ScriptedApp app;
};

TEST_F(NoThreads, ExchangeReturnsItsReply) {
  const auto exchange = [port = app.port()] {
    if (!giveUpThreads()) std::_Exit(couldNotTry);
    const bridge::Outcome outcome = bridge::exchange(port, asBytes("{}"), 30s);
    std::_Exit(outcome.ended && outcome.reply ? 0 : 1);
  };
  EXPECT_EXIT(exchange(), testing::ExitedWithCode(0), "^$");
}

TEST_F(NoThreads, AbandonedExchangeDoesNotAffectTheNext) {
  app.script({replyWhenReleased("{}")});
  const auto exchanges = [this] {
    if (!giveUpThreads()) std::_Exit(couldNotTry);
    if (bridge::exchange(app.port(), asBytes("{}"), 1s).ended) std::_Exit(1);
    const bridge::Outcome next = bridge::exchange(app.port(), asBytes("{}"), 30s);
    std::_Exit(next.ended && next.reply ? 0 : 2);
  };
  EXPECT_EXIT(exchanges(), testing::ExitedWithCode(0), "^$");
}

TEST_F(NoThreads, LaunchFails) {
  const auto launch = [] {
    if (!giveUpThreads()) std::_Exit(couldNotTry);
    std::_Exit(bridge::launchApp() ? 1 : 0);
  };
  EXPECT_EXIT(launch(), testing::ExitedWithCode(0), "^$");
}

}  // namespace

#endif
