#include "standin/demo/server_child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>

extern char** environ;  // NOLINT(readability-redundant-declaration): not every system's headers do

namespace demo {
namespace {

void check(int error, const std::string& what) {
  if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

// The child inherits neither end, except as a standard stream.
std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  check(::pipe(ends.data()) == 0 ? 0 : errno, "pipe");
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  return ends;
}

}  // namespace

ServerChild::ServerChild(std::string program) {
  const auto [childInput, input] = makePipe();
  const auto [output, childOutput] = makePipe();
  input_ = ::fdopen(input, "w");
  output_ = ::fdopen(output, "r");
  posix_spawn_file_actions_t actions{};
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, childInput, STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, childOutput, STDOUT_FILENO);
  std::array<char*, 2> words{program.data(), nullptr};
  const int error =
      ::posix_spawn(&process_, words.front(), &actions, nullptr, words.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(childInput);
  ::close(childOutput);
  check(error, program);
  std::signal(SIGPIPE, SIG_IGN);  // if the server ends early, receive() notices
}

ServerChild::~ServerChild() {
  if (input_ != nullptr) finish();
  std::fclose(output_);
}

void ServerChild::send(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), input_);
  std::fputc('\n', input_);
  std::fflush(input_);
}

std::string ServerChild::receive() {
  std::string line;
  for (int byte = std::getc(output_); byte != '\n'; byte = std::getc(output_)) {
    if (byte == EOF) throw std::runtime_error("the server has closed its output");
    line += static_cast<char>(byte);
  }
  return line;
}

int ServerChild::finish() {
  std::fclose(input_);
  input_ = nullptr;
  int status = 0;
  ::waitpid(process_, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace demo
