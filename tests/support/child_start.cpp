#include "tests/support/child_start.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>

#include "bridge/home_directory.h"
#include "tests/support/private_mounts.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): not every system declares it

namespace {

// The built server, unless the environment of the tests names another one.
std::string serverProgram() {
  const char* other = std::getenv("QUILLMARK_TESTED_SERVER");
  return other != nullptr ? other : QUILLMARK_MCP_BINARY;
}

enum class Step { mounts, directory, exec };

struct StartFailure {
  Step step;
  int error;
};

// Everything that the child needs, prepared before fork(). The test has threads, so the child must
// not allocate memory.
struct ChildPlan {
  ChildPlan(const TemporaryHome& home, const ServerSetup& serverSetup, ChildStreams childStreams)
      : setup(serverSetup),
        streams(childStreams),
        mounts(serverSetup.overUsrBin),
        arguments(serverSetup.command) {
    if (arguments.empty()) arguments.push_back(serverProgram());
    arguments.insert(arguments.end(), setup.arguments.begin(), setup.arguments.end());
    const std::string homeIs = std::string(bridge::homeVariable) + "=";
    for (char** entry = environ; *entry != nullptr; ++entry) {
      if (!std::string_view(*entry).starts_with(homeIs)) environment.emplace_back(*entry);
    }
    environment.push_back(homeIs + home.home().string());
    environment.insert(environment.end(), setup.environment.begin(), setup.environment.end());
    argumentPointers = pointersTo(arguments);
    environmentPointers = pointersTo(environment);
  }

  static std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
  }

  const ServerSetup& setup;
  ChildStreams streams;
  PrivateMounts mounts;
  std::vector<std::string> arguments;
  std::vector<std::string> environment;
  std::vector<char*> argumentPointers;
  std::vector<char*> environmentPointers;
};

void setStreams(const ChildPlan& plan, int report) {
  ::dup2(plan.streams.input, STDIN_FILENO);
  ::dup2(plan.streams.output, STDOUT_FILENO);
  ::dup2(plan.streams.error, STDERR_FILENO);
  for (int descriptor = STDERR_FILENO + 1; descriptor < 1024; ++descriptor) {
    if (descriptor != report) ::close(descriptor);
  }
  [[maybe_unused]] const int stray = plan.setup.strayDescriptor ? ::dup(STDERR_FILENO) : -1;
  for (const int stream : plan.setup.closedStreams) ::close(stream);
}

void setSignals(const ChildPlan& plan) {
  for (int number = 1; number < 32; ++number) ::signal(number, SIG_DFL);
  sigset_t blocked;
  ::sigemptyset(&blocked);
  if (plan.setup.signalsBlockedAndIgnored) {
    for (const int number : {SIGINT, SIGHUP, SIGPIPE, SIGCHLD, SIGUSR1}) {
      ::signal(number, SIG_IGN);
    }
    for (const int number : {SIGTERM, SIGUSR2, SIGALRM, SIGCHLD}) ::sigaddset(&blocked, number);
  }
  ::sigprocmask(SIG_SETMASK, &blocked, nullptr);
}

StartFailure becomeServer(const ChildPlan& plan, int report) {
  setStreams(plan, report);
  setSignals(plan);
  const rlimit noCore{.rlim_cur = 0, .rlim_max = 0};
  ::setrlimit(RLIMIT_CORE, &noCore);
  if (!plan.setup.overUsrBin.empty()) {
    if (const int error = plan.mounts.enter()) return {.step = Step::mounts, .error = error};
  }
  if (!plan.setup.directory.empty() && ::chdir(plan.setup.directory.c_str()) != 0) {
    return {.step = Step::directory, .error = errno};
  }
  ::execve(plan.argumentPointers[0], plan.argumentPointers.data(), plan.environmentPointers.data());
  return {.step = Step::exec, .error = errno};
}

[[noreturn]] void throwFailure(const StartFailure& failure) {
  if (failure.step == Step::mounts) throw PrivateMountsRefused(failure.error);
  throw std::system_error(failure.error, std::generic_category(), serverProgram());
}

}  // namespace

pid_t startServer(const TemporaryHome& home, const ServerSetup& setup, ChildStreams streams) {
  const ChildPlan plan(home, setup, streams);
  std::array<int, 2> report{};
  if (::pipe(report.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  ::fcntl(report[1], F_SETFD, FD_CLOEXEC);

  const pid_t pid = ::fork();
  if (pid == 0) {
    const StartFailure failure = becomeServer(plan, report[1]);
    (void)!::write(report[1], &failure, sizeof failure);
    ::_exit(127);
  }
  ::close(report[1]);
  if (pid < 0) throw std::system_error(errno, std::generic_category(), "fork");

  // Loading the program closes the pipe.
  StartFailure failure{};
  const ssize_t count = ::read(report[0], &failure, sizeof failure);
  ::close(report[0]);
  if (count == sizeof failure) {
    ::waitpid(pid, nullptr, 0);
    throwFailure(failure);
  }
  return pid;
}
