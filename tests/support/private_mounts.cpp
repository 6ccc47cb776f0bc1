#include "tests/support/private_mounts.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

PrivateMountsRefused::PrivateMountsRefused(int error)
    : std::runtime_error(std::string("needs mounts of its own (") + std::strerror(error) +
#ifdef __linux__
                         "): run as root, in a privileged container, or allow user namespaces, on "
                         "Ubuntu with sysctl -w kernel.apparmor_restrict_unprivileged_userns=0") {
}
#else
                         "), which only Linux has") {
}
#endif

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

/// Makes the real root directory the root again. A process whose working directory is outside its
/// root can climb out of it.
int leaveChangedRoot() noexcept {
  constexpr int deepestRoot = 64;
  if (::chdir("/") != 0 || ::chroot("/usr") != 0) return errno;
  for (int i = 0; i < deepestRoot; ++i) {
    if (::chdir("..") != 0) return errno;
  }
  return ::chroot(".") == 0 ? 0 : errno;
}

int makePrivate() noexcept {
  return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 ? 0 : errno;
}

/// If the root was changed to a plain folder, the mount of that folder can only be named from
/// outside.
int makePrivateFromOutside() noexcept {
  const int folder = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const int root = ::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0 || root < 0) return errno;
  int error = leaveChangedRoot();
  if (error == 0) error = makePrivate();
  const bool back = ::fchdir(root) == 0 && ::chroot(".") == 0 && ::fchdir(folder) == 0;
  if (error == 0 && !back) error = errno;
  ::close(folder);
  ::close(root);
  return error;
}

}  // namespace

// The folder is the upper of two read-only layers. So nothing has to be writable, and the temporary
// folder may be on any kind of file system.
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
  int error = makePrivate();
  if (error == EINVAL) error = makePrivateFromOutside();
  if (error != 0) return error;
  return ::mount("overlay", "/usr/bin", "overlay", MS_RDONLY, overlayOptions_.c_str()) == 0 ? 0
                                                                                            : errno;
}

#else

PrivateMounts::PrivateMounts(const std::filesystem::path&) {}
int PrivateMounts::enter() const noexcept {
  return ENOSYS;
}

#endif
