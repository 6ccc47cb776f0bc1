#include "benchmarks/driver/conversation.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

extern char** environ;  // NOLINT(readability-redundant-declaration): not everywhere declared

namespace {

// The reading and the writing end, which a child process does not inherit.
std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  return ends;
}

pid_t start(const std::vector<std::string>& command, int input, int output) {
  std::vector<char*> words(command.size() + 1);  // the last stays null
  std::ranges::transform(command, words.begin(),
                         [](const std::string& word) { return const_cast<char*>(word.c_str()); });
  posix_spawn_file_actions_t streams;
  ::posix_spawn_file_actions_init(&streams);
  ::posix_spawn_file_actions_adddup2(&streams, input, STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&streams, output, STDOUT_FILENO);
  pid_t process = -1;
  const int error = ::posix_spawnp(&process, words[0], &streams, nullptr, words.data(), environ);
  ::posix_spawn_file_actions_destroy(&streams);
  if (error != 0) throw std::system_error(error, std::generic_category(), "cannot start it");
  return process;
}

}  // namespace

Conversation::Conversation(const std::vector<std::string>& command) : received_(4096, '\0') {
  const std::array<int, 2> in = makePipe();
  const std::array<int, 2> out = makePipe();
  process_ = start(command, in[0], out[1]);
  ::close(in[0]);
  ::close(out[1]);
  input_ = in[1];
  output_ = out[0];
}

Conversation::~Conversation() {
  ::close(input_);
  ::close(output_);
  ::waitpid(process_, nullptr, 0);
}

std::string_view Conversation::ask(std::string_view line) {
  while (!line.empty()) {
    const ssize_t count = ::write(input_, line.data(), line.size());
    if (count <= 0) throw std::runtime_error("stopped reading");
    line.remove_prefix(static_cast<std::size_t>(count));
  }
  std::size_t size = 0;
  while (size == 0 || received_[size - 1] != '\n') {
    if (size == received_.size()) received_.resize(2 * size);
    const ssize_t count = ::read(output_, received_.data() + size, received_.size() - size);
    if (count <= 0) throw std::runtime_error("ended without an answer");
    size += static_cast<std::size_t>(count);
  }
  return std::string_view(received_).substr(0, size - 1);
}

double Conversation::memory(std::string_view which) const {
  std::ifstream status("/proc/" + std::to_string(process_) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(which)) return std::stod(line.substr(which.size() + 1)) * 1024;
  }
  return 0;
}
