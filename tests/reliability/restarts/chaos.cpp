#include "tests/reliability/restarts/chaos.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "tests/reliability/recorded_open.h"

using namespace std::chrono_literals;

/// In the background, with none of the caller's pipes.
std::string Chaos::command() const {
  return "'" + app_ + "' '" + home_.home().string() + "' </dev/null >/dev/null 2>&1 &";
}

// By a shell, so that the application isn't a child of this process and no process has to wait for
// it.
void Chaos::spawnApp() const {
  std::string shell = "/bin/sh";
  std::string option = "-c";
  std::string words = command();
  char* arguments[] = {shell.data(), option.data(), words.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
  pid_t child = -1;
  const int error = posix_spawn(&child, shell.c_str(), &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("no shell");
  waitpid(child, nullptr, 0);
}

Publication Chaos::waitForPublication(std::size_t number) const {
  // `open` is run by the next call. The one before it may wait for its limits first.
  const auto deadline = Clock::now() + 120s;
  while (true) {
    const auto publications = records_.publications();
    if (publications.size() >= number) return publications[number - 1];
    if (Clock::now() > deadline) throw std::runtime_error("the application does not come back");
    std::this_thread::sleep_for(1ms);
  }
}

void Chaos::startApp() {
  spawnApp();
  waitForPublication(1);
}

void Chaos::killApp() {
  kill(records_.publications().back().process, SIGKILL);
}

void Chaos::pause(std::chrono::milliseconds most) {
  const auto range = static_cast<std::mt19937::result_type>(most / 1us);
  std::this_thread::sleep_for(std::chrono::microseconds(random_() % range));
}

void Chaos::stopAndContinue(pid_t server) {
  Interval stop{.begin = Clock::now(), .end = {}};
  kill(server, SIGSTOP);
  pause(60ms);
  kill(server, SIGCONT);
  stop.end = Clock::now();
  stops_.push_back(stop);
}

void Chaos::restartApp(pid_t server) {
  pause(60ms);
  if (oneIn(4)) stopAndContinue(server);
  const std::size_t published = records_.publications().size();
  const bool byOpen = oneIn(8);
  // Otherwise the call in progress may have launched it before, and waits for 20 seconds.
  if (byOpen) waitForCall(records_.publications().back().token);
  RecordedOpen::onLaunch(home_, byOpen ? command() : "");
  Restart restart{.killed = Clock::now(), .gone = {}, .fileWasRemoved = oneIn(2), .back = {}};
  killApp();
  if (restart.fileWasRemoved) records_.removeEndpointFile();
  restart.gone = Clock::now();
  if (oneIn(4)) stopAndContinue(server);
  if (!byOpen) {
    pause(oneIn(4) ? 600ms : 30ms);
    spawnApp();
  }
  if (oneIn(4)) stopAndContinue(server);
  restart.back = waitForPublication(published + 1);
  restarts_.push_back(restart);
  // Half of the time, the application lives until it has carried out a call.
  if (oneIn(2)) waitForCall(restart.back.token);
}

void Chaos::waitForCall(const std::string& token) const {
  const auto isByThat = [&](const CarriedOut& one) { return one.token == token; };
  for (const auto deadline = Clock::now() + 5s; Clock::now() < deadline;) {
    const auto all = records_.carriedOut();
    if (std::ranges::any_of(all, isByThat)) return;
    std::this_thread::sleep_for(5ms);
  }
}
