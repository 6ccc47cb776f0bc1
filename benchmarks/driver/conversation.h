#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

/// One run of a server, which gets requests over two pipes as from an agent's host. Members throw
/// std::runtime_error if the server cannot be started or ends early. The destructor closes the
/// server's input and waits for its exit.
class Conversation {
 public:
  /// The command is a program, found through PATH, and its arguments.
  explicit Conversation(const std::vector<std::string>& command);
  ~Conversation();
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  /// Writes a line, which ends with its line feed, and returns the line that answers it, without
  /// its line feed; valid until the next call. An answer ends where a read ends with a line feed,
  /// so that reading costs next to nothing.
  std::string_view ask(std::string_view line);

  /// The server's memory in bytes, now ("VmRSS") or at its highest so far ("VmHWM"); 0 on systems
  /// without /proc.
  double memory(std::string_view which) const;

 private:
  int input_ = -1, output_ = -1;  // the server's own, seen from here
  pid_t process_ = -1;
  std::string received_;
};
