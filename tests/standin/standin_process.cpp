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

namespace {

constexpr int tenSeconds = 10000;

[[noreturn]] void fail(int error, const char* what) {
  throw std::system_error(error, std::generic_category(), what);
}

}  // namespace

StandinProcess::StandinProcess(const std::filesystem::path& home, std::vector<std::string> words) {
  words.insert(words.begin(), QUILLMARK_STANDIN_BINARY);
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::string homeVariable = "HOME=" + home.native();
  std::array<char*, 2> environment{homeVariable.data(), nullptr};
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) fail(errno, "pipe");
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  posix_spawn_file_actions_t actions{};
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  const int error = ::posix_spawn(&process_, arguments.front(), &actions, nullptr, arguments.data(),
                                  environment.data());
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  output_ = ends[0];
  if (error == 0) return;
  ::close(output_);
  fail(error, "posix_spawn");
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
  // Its output ends when it does, so nothing need be asked over and over.
  for (char rest = 0; readByte(rest);) continue;
  int status = 0;
  if (::waitpid(process_, &status, WNOHANG) == 0) {
    pollfd nothing{.fd = -1, .events = 0, .revents = 0};
    ::poll(&nothing, 1, 500);  // between the closing of its output and its end
    if (::waitpid(process_, &status, WNOHANG) == 0) return -1;
  }
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
