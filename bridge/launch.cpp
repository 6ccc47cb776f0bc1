#include "bridge/launch.h"

#include <spawn.h>
#include <unistd.h>

#include <array>
#include <csignal>

#ifdef __APPLE__
#include <fcntl.h>
#endif

extern char** environ;  // NOLINT(readability-redundant-declaration): not in every system's headers

namespace bridge {
namespace {

#ifdef __APPLE__

constexpr short systemFlags = POSIX_SPAWN_CLOEXEC_DEFAULT;  // closes all that are not listed

void inheritStandardStreamsOnly(posix_spawn_file_actions_t* actions) {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) != -1) posix_spawn_file_actions_addinherit_np(actions, stream);
  }
}

#else

constexpr short systemFlags = 0;

void inheritStandardStreamsOnly(posix_spawn_file_actions_t* actions) {
  posix_spawn_file_actions_addclosefrom_np(actions, STDERR_FILENO + 1);
}

#endif

/// How the child starts: default signal handling, no signal blocked, and only the standard streams
/// open. Descriptors that this process inherited from a careless parent are closed, too.
class SpawnSettings {
 public:
  SpawnSettings() {
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    constexpr short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | systemFlags;
    posix_spawnattr_setflags(&attributes_, flags);
    posix_spawn_file_actions_init(&actions_);
    inheritStandardStreamsOnly(&actions_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }

  [[nodiscard]] const posix_spawnattr_t* attributes() const { return &attributes_; }
  [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &actions_; }

 private:
  posix_spawnattr_t attributes_;
  posix_spawn_file_actions_t actions_;
};

/// The child is not waited for. With SIGCHLD ignored, the system reaps it.
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
  const SpawnSettings settings;
  pid_t child = 0;
  return posix_spawn(&child, program.data(), settings.actions(), settings.attributes(),
                     arguments.data(), environ) == 0;
}

}  // namespace bridge
