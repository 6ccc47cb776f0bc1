#include "bridge/launch.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <csignal>

extern char** environ;  // NOLINT(readability-redundant-declaration): not every system's headers do

namespace bridge {
namespace {

class SpawnAttributes {
 public:
  SpawnAttributes() {
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_, flags);
  }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
#ifdef __APPLE__
  static constexpr short flags =
      POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_CLOEXEC_DEFAULT;
#else
  static constexpr short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
#endif
  posix_spawnattr_t attributes_;
};

/// Leaves the child its standard streams and closes everything else, also what this process
/// was itself given by a careless parent.
class StandardStreamsOnly {
 public:
  StandardStreamsOnly() {
    posix_spawn_file_actions_init(&actions_);
#ifdef __APPLE__
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      if (fcntl(stream, F_GETFD) != -1) posix_spawn_file_actions_addinherit_np(&actions_, stream);
    }
#else
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
#endif
  }
  StandardStreamsOnly(const StandardStreamsOnly&) = delete;
  StandardStreamsOnly& operator=(const StandardStreamsOnly&) = delete;
  ~StandardStreamsOnly() { posix_spawn_file_actions_destroy(&actions_); }

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

/// Nobody waits for the child: let the system reap it when it ends.
void leaveChildrenToTheSystem() {
  struct sigaction ignore{};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGCHLD, &ignore, nullptr);
}

}  // namespace

bool launchApp() {
  static std::array<char, 14> program{"/usr/bin/open"};
  static std::array<char, 3> background{"-g"};
  static std::array<char, 3> byBundle{"-b"};
  static std::array<char, 14> application{"app.quillmark"};
  const std::array<char*, 5> arguments{program.data(), background.data(), byBundle.data(),
                                       application.data(), nullptr};
  leaveChildrenToTheSystem();
  const SpawnAttributes attributes;
  const StandardStreamsOnly streams;
  pid_t child = 0;
  return posix_spawn(&child, program.data(), streams.get(), attributes.get(), arguments.data(),
                     environ) == 0;
}

}  // namespace bridge
