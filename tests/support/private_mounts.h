#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

/// The machine does not let this process have mounts of its own; what() says why.
struct PrivateMountsRefused : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A view of the file system for one child process, in which the files of a folder lie over
/// those of /usr/bin, and everything else is as it was. Linux only; it needs no privileges
/// where ordinary users may have user namespaces.
///
/// Made before fork, entered after it:
///
///     const PrivateMounts mounts(folder);
///     if (fork() == 0) { if (mounts.enter() == 0) execve(...); _exit(1); }
class PrivateMounts {
 public:
  explicit PrivateMounts(const std::filesystem::path& overUsrBin);

  /// Moves the calling process into its own mounts. Returns 0, or the errno of the step that
  /// was refused. Only makes calls that are safe in a child forked from a threaded process.
  int enter() const noexcept;

 private:
  std::string overlayOptions_;
  std::string userMap_;
  std::string groupMap_;
};
