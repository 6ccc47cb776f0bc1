#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

/// The system does not let this process have mounts of its own. what() says why and what helps.
struct PrivateMountsRefused : std::runtime_error {
  explicit PrivateMountsRefused(int error);
};

/// A view of the file system for one child process: the files of a folder cover those of /usr/bin,
/// and everything else is unchanged. Linux only. Needs no privileges where ordinary users may
/// create user namespaces.
///
/// Make it before fork(), enter it after:
///
///     const PrivateMounts mounts(folder);
///     if (fork() == 0) { if (mounts.enter() == 0) execve(...); _exit(1); }
class PrivateMounts {
 public:
  explicit PrivateMounts(const std::filesystem::path& overUsrBin);

  /// Moves the calling process into its own mounts. Returns 0, or the errno of the refused step.
  /// Safe in a child that was forked from a process with threads.
  int enter() const noexcept;

 private:
  std::string overlayOptions_;
  std::string userMap_;
  std::string groupMap_;
};
