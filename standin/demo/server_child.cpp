#include "standin/demo/server_child.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

extern char** environ;  // NOLINT(readability-redundant-declaration): not declared on every system

namespace demo {
namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
}

// Reading end and writing end; no child inherits them unless it is told to.
std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) fail(errno, "pipe");
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  return ends;
}

pid_t start(std::vector<std::string>& command, int input, int output) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (std::string& word : command) words.push_back(word.data());
  words.push_back(nullptr);
  posix_spawn_file_actions_t actions{};
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  pid_t process = -1;
  const int error =
      ::posix_spawnp(&process, words.front(), &actions, nullptr, words.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) fail(error, command.front());
  return process;
}

bool readableBefore(int descriptor, Clock::time_point deadline) {
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  pollfd waiting{.fd = descriptor, .events = POLLIN, .revents = 0};
  return left > 0 && ::poll(&waiting, 1, static_cast<int>(left)) > 0;
}

}  // namespace

ServerChild::ServerChild(std::vector<std::string> command) {
  const auto [childInput, input] = makePipe();
  const auto [output, childOutput] = makePipe();
  input_ = input;
  output_ = output;
  std::signal(SIGPIPE, SIG_IGN);  // a server that has gone shows as a failed write
  process_ = start(command, childInput, childOutput);
  ::close(childInput);
  ::close(childOutput);
}

ServerChild::~ServerChild() {
  closeInput();
  ::close(output_);
  if (process_ <= 0) return;
  ::kill(process_, SIGTERM);
  ::waitpid(process_, nullptr, 0);
}

bool ServerChild::send(std::string_view line) {
  std::string rest(line);
  rest += '\n';
  while (!rest.empty()) {
    const ssize_t written = ::write(input_, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) return false;
    rest.erase(0, static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
  }
  return true;
}

std::optional<std::string> ServerChild::receive(std::chrono::milliseconds within) {
  const Clock::time_point deadline = Clock::now() + within;
  std::size_t end = received_.find('\n');
  while (end == std::string::npos) {
    std::array<char, 65536> block{};
    if (!readableBefore(output_, deadline)) return std::nullopt;
    const ssize_t bytes = ::read(output_, block.data(), block.size());
    if (bytes <= 0) return std::nullopt;
    const std::size_t searched = received_.size();
    received_.append(block.data(), static_cast<std::size_t>(bytes));
    end = received_.find('\n', searched);
  }
  std::string line = received_.substr(0, end);
  received_.erase(0, end + 1);
  return line;
}

bool ServerChild::finish(std::chrono::milliseconds within) {
  closeInput();
  if (receive(within) || !received_.empty()) return false;
  // Only the end of the output, not the limit, lets the read return without waiting.
  std::array<char, 1> nothing{};
  if (!readableBefore(output_, Clock::now() + within) ||
      ::read(output_, nothing.data(), nothing.size()) != 0) {
    return false;
  }
  int status = 0;
  const bool ended = ::waitpid(process_, &status, 0) == process_;
  process_ = -1;
  return ended && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void ServerChild::closeInput() {
  if (input_ >= 0) ::close(input_);
  input_ = -1;
}

}  // namespace demo
