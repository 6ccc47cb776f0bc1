#include "benchmarks/driver/start_child.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>
#include <string_view>
#include <system_error>

#ifdef __APPLE__
extern char** environ;
#endif

namespace {

std::vector<char*> environmentWith(std::string& home) {
  std::vector<char*> environment{home.data()};
  for (char** entry = environ; *entry != nullptr; ++entry) {
    if (!std::string_view(*entry).starts_with("HOME=")) environment.push_back(*entry);
  }
  environment.push_back(nullptr);
  return environment;
}

std::vector<char*> pointersTo(const std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

pid_t startChild(const std::vector<std::string>& command, const std::string& home,
                 ChildStreams streams) {
  std::string homeEntry = "HOME=" + home;
  const std::vector<char*> environment = environmentWith(homeEntry);
  const std::vector<char*> words = pointersTo(command);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, streams.input, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, streams.output, STDOUT_FILENO);
  if (streams.quiet) {
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  }
  // The driver ignores broken pipes; a contestant shall not.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

  pid_t child = -1;
  const int error =
      posix_spawnp(&child, words.front(), &actions, &attributes, words.data(), environment.data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), "cannot start " + command.front());
  }
  return child;
}
