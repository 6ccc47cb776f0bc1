#include "tests/support/private_mounts.h"

#include <unistd.h>

#include <cerrno>

#ifdef __linux__

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>

namespace {

int writeFile(const char* path, const std::string& text) noexcept {
  const int file = ::open(path, O_WRONLY | O_CLOEXEC);
  if (file < 0) return errno;
  const ssize_t written = ::write(file, text.data(), text.size());
  const int error = written < 0 ? errno : 0;
  ::close(file);
  return error;
}

std::string identity(unsigned id) {
  return std::to_string(id) + " " + std::to_string(id) + " 1";
}

}  // namespace

// The folder is the upper of two read-only layers, so nothing has to be writable and the
// file system below the temporary folder may be of any kind.
PrivateMounts::PrivateMounts(const std::filesystem::path& overUsrBin)
    : overlayOptions_("lowerdir=" + overUsrBin.string() + ":/usr/bin"),
      userMap_(identity(::getuid())),
      groupMap_(identity(::getgid())) {}

int PrivateMounts::enter() const noexcept {
  if (::unshare(CLONE_NEWNS) != 0) {
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return errno;
    if (const int error = writeFile("/proc/self/setgroups", "deny")) return error;
    if (const int error = writeFile("/proc/self/uid_map", userMap_)) return error;
    if (const int error = writeFile("/proc/self/gid_map", groupMap_)) return error;
  }
  if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return errno;
  return ::mount("overlay", "/usr/bin", "overlay", MS_RDONLY, overlayOptions_.c_str()) == 0 ? 0
                                                                                            : errno;
}

#else

PrivateMounts::PrivateMounts(const std::filesystem::path&) {}
int PrivateMounts::enter() const noexcept {
  return ENOSYS;
}

#endif
