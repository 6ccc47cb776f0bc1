#include "tests/standin/standin_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

extern char** environ;  // NOLINT(readability-redundant-declaration): not every system's headers do

namespace {

constexpr int tenSeconds = 10000;

void check(int error, const char* what) {
  if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

}  // namespace

StandinProcess::StandinProcess(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), QUILLMARK_STANDIN_BINARY);
  std::vector<char*> words;
  words.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  std::array<int, 2> ends{};
  check(::pipe(ends.data()) == 0 ? 0 : errno, "pipe");
  output_ = ends[0];
  ::fcntl(output_, F_SETFD, FD_CLOEXEC);
  posix_spawn_file_actions_t actions{};
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_addclose(&actions, ends[1]);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  const int error =
      ::posix_spawn(&process_, words.front(), &actions, nullptr, words.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  check(error, words.front());
}

StandinProcess::~StandinProcess() {
  ::close(output_);
  if (process_ <= 0) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

bool StandinProcess::readByte(char& byte) {
  pollfd waiting{.fd = output_, .events = POLLIN, .revents = 0};
  return ::poll(&waiting, 1, tenSeconds) > 0 && ::read(output_, &byte, 1) == 1;
}

std::string StandinProcess::readLine() {
  std::string line;
  for (char byte = 0; readByte(byte) && byte != '\n';) line += byte;
  return line;
}

int StandinProcess::stop(int signal) {
  ::kill(process_, signal);
  return waitForEnd();
}

int StandinProcess::waitForEnd() {
  // Its output is open until it ends; after that, it needs a moment to be collected.
  for (char rest = 0; readByte(rest);) continue;
  int status = 0;
  for (int tries = 0; ::waitpid(process_, &status, WNOHANG) == 0; ++tries) {
    if (tries == 1000) return -1;
    ::poll(nullptr, 0, 10);
  }
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
