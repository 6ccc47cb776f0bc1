#include "tests/reliability/faults/fault_table.h"

namespace {

/// "error=" before each of the names.
std::vector<std::string> errors(const std::vector<std::string_view>& names) {
  std::vector<std::string> injections;
  injections.reserve(names.size());
  for (const std::string_view name : names) injections.push_back("error=" + std::string(name));
  return injections;
}

const std::vector<std::string> impossible;

std::vector<FaultRow> standardStreams() {
  return {
      {"fcntl", R"(^fcntl\(\d<)", errors({"EBADF"}), Effect::none,
       "the host left this standard stream closed"},
      {"read", R"(^read\(0<)", errors({"EINTR", "EAGAIN"}), Effect::none,
       "a signal; a host that made the pipe non-blocking"},
      {"read", R"(^read\(0<)", errors({"ECONNRESET"}), Effect::inputEnds,
       "the input is a socket pair, and the host has gone. After the injected failure the rest of "
       "the input can be read, as after no real one; a request that was cut is lost then"},
      {"write", R"(^write\(1<)", errors({"EINTR", "EAGAIN"}), Effect::none,
       "a signal; a host that made the pipe non-blocking"},
      {"write", R"(^write\(1<)",
       errors({"EPIPE", "ECONNRESET", "ENOMEM", "ENOBUFS", "ENOSPC", "EDQUOT", "EFBIG", "EIO"}),
       Effect::replyLost,
       "the host has gone and SIGPIPE is ignored; no memory for a pipe's page or a socket's "
       "buffer; the output is a file on a full disk, above a limit, or on a bad disk"},
      {"pselect6", R"(^pselect6\()", errors({"EINTR"}), Effect::none,
       "a signal; so few descriptors need no memory of the kernel's"},
  };
}

std::vector<FaultRow> endpointFile() {
  return {
      {"openat", R"(^openat\()",
       errors({"EACCES", "EPERM", "ENOENT", "ENOTDIR", "ELOOP", "ENAMETOOLONG", "EMFILE", "ENFILE",
               "ENOMEM", "EINTR", "EIO", "ESTALE"}),
       Effect::appLaunched,
       "rights, a path that has changed, limits, memory; the last three on network file systems "
       "and bad disks"},
      {"newfstatat", R"(^newfstatat\()", errors({"EACCES", "ENOMEM", "EIO", "ESTALE"}),
       Effect::appLaunched, "a security module, memory, a bad disk, a network file system"},
      {"pread64", R"(^pread64\()", errors({"EINTR"}), Effect::none,
       "a signal while a network file system is waited for"},
      {"pread64", R"(^pread64\()", errors({"EACCES", "ENOMEM", "EIO", "ESTALE"}),
       Effect::appLaunched, "a security module, memory, a bad disk, a network file system"},
      {"close", R"(^close\(\d+</)", errors({"EINTR", "EIO", "EDQUOT", "ENOSPC"}), Effect::none,
       "network file systems report late failures here. The injected failure leaves the "
       "descriptor open, as no real one does"},
  };
}

std::vector<FaultRow> connection() {
  return {
      {"socket", R"(^socket\()",
       errors({"EMFILE", "ENFILE", "ENOMEM", "ENOBUFS", "EACCES", "EPERM", "EAFNOSUPPORT"}),
       Effect::callFails, "limits, memory, a security module, a sandbox, a system without IPv4"},
      {"connect", R"(^connect\()",
       errors({"ECONNREFUSED", "ETIMEDOUT", "EADDRNOTAVAIL", "ENETUNREACH", "EHOSTUNREACH",
               "EACCES", "EPERM", "ENOMEM", "ENOBUFS"}),
       Effect::none,
       "no listener; no port is free; the loopback interface is down; a firewall; memory"},
      {"connect", R"(^connect\()", errors({"ECONNRESET"}), Effect::callFails,
       "accepted, and broken off at once"},
      {"poll", R"(^poll\()", errors({"EINTR", "ENOMEM"}), Effect::none, "a signal; memory"},
      {"getsockopt", R"(^getsockopt\()", errors({"EACCES", "EPERM", "ENOMEM"}), Effect::none,
       "a security module, a filter of the control group, its memory"},
      {"getsockname", R"(^getsockname\()", errors({"EACCES", "ENOBUFS"}), Effect::none,
       "a security module, memory; the check for a self-connect is left out then"},
      {"sendto", R"(^sendto\()", errors({"EAGAIN", "EINTR"}), Effect::none,
       "a full buffer, a signal"},
      {"sendto", R"(^sendto\()",
       errors({"ECONNRESET", "EPIPE", "ETIMEDOUT", "EHOSTUNREACH", "ENETUNREACH", "ENOMEM",
               "ENOBUFS", "EACCES"}),
       Effect::callFails, "the application or the interface has gone; memory; a security module"},
      {"recvfrom", R"(^recvfrom\()", errors({"EAGAIN", "EINTR"}), Effect::none,
       "a checksum that was wrong after all, a signal"},
      {"recvfrom", R"(^recvfrom\()",
       errors({"ECONNRESET", "EPIPE", "ETIMEDOUT", "EHOSTUNREACH", "ENOMEM", "EACCES"}),
       Effect::callFails, "the application or the interface has gone; memory; a security module"},
      {"close", R"(^close\(\d+<(socket|TCP))", impossible, Effect::none,
       "closing a TCP socket always succeeds"},
  };
}

std::vector<FaultRow> launch() {
  return {
      {"prlimit64", R"(^prlimit64\()", errors({"EACCES", "EPERM"}), Effect::none,
       "a security module, a sandbox; the C library asks for the number of descriptors"},
      {"clone3", R"(^clone3\()", errors({"ENOSYS"}), Effect::none,
       "an old kernel or a sandbox; the C library uses clone instead"},
      {"clone3", R"(^clone3\()", errors({"EAGAIN", "ENOMEM", "EPERM"}), Effect::callFails,
       "too many processes or threads; memory; a sandbox"},
      {"wait4", R"(^wait4\()", errors({"EINTR"}), Effect::none, "a signal"},
      {"close_range", R"(^close_range\()", errors({"ENOSYS", "EPERM"}), Effect::none,
       "an old kernel, a sandbox; the C library then closes them one by one"},
      {"execve", R"(^execve\()",
       errors({"EACCES", "EPERM", "ENOENT", "ENOEXEC", "ELOOP", "E2BIG", "ETXTBSY", "EAGAIN",
               "EMFILE", "ENFILE", "ENOMEM", "EIO"}),
       Effect::callFails, "no `open`, or one that may not or can not be run; limits; memory"},
      {"clock_nanosleep", R"(^clock_nanosleep\()", errors({"EINTR"}), Effect::none, "a signal"},
      {"rt_sigaction", R"(^rt_sigaction\()", impossible, Effect::none, "its arguments are valid"},
      {"rt_sigprocmask", R"(^rt_sigprocmask\()", impossible, Effect::none,
       "its arguments are valid"},
  };
}

std::vector<FaultRow> memoryAndEnd() {
  const auto noMemory = errors({"ENOMEM"});
  return {
      {"brk",
       R"(^brk\()",
       {"retval=0"},
       Effect::processAborts,
       "a limit or the machine's memory: no error number, but a break below the one asked for"},
      {"mmap", R"(^mmap\()", noMemory, Effect::processAborts, "a limit or the machine's memory"},
      {"mremap", R"(^mremap\()", noMemory, Effect::processAborts, "the same"},
      {"mprotect", R"(^mprotect\()", noMemory, Effect::processAborts, "the same"},
      {"munmap", R"(^munmap\()", noMemory, Effect::none, "the limit of mappings is reached"},
      {"madvise", R"(^madvise\()", noMemory, Effect::none, "the same"},
      {"restart_syscall", R"(^restart_syscall\()", impossible, Effect::none,
       "the rest of a poll() that attaching to the thread has interrupted"},
      {"exit_group", R"(^exit_group\()", impossible, Effect::none, "it does not return"},
      {"exit", R"(^exit\()", impossible, Effect::none, "it does not return"},
  };
}

std::vector<FaultRow> allRows() {
  std::vector<FaultRow> all;
  for (const auto& part :
       {standardStreams(), endpointFile(), connection(), launch(), memoryAndEnd()}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

}  // namespace

const std::vector<FaultRow>& faultTable() {
  static const std::vector<FaultRow> rows = allRows();
  return rows;
}
