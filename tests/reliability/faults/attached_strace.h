#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

inline constexpr const char* straceProgram = "/usr/bin/strace";

/// The second thread of a process, once it is there and waits. Throws std::runtime_error if there
/// is none after 20 seconds.
pid_t backgroundThreadOf(pid_t process);

/// A strace that follows one thread of a running process to its end.
class AttachedStrace {
 public:
  /// Returns when strace has attached. Throws std::runtime_error if it can't.
  AttachedStrace(pid_t thread, const std::vector<std::string>& options,
                 const std::filesystem::path& trace);
  AttachedStrace(const AttachedStrace&) = delete;
  AttachedStrace& operator=(const AttachedStrace&) = delete;
  /// Waits until the thread has ended, at most 20 seconds.
  ~AttachedStrace();

 private:
  pid_t strace_ = -1;
};
