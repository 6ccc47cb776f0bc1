#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace demo {

/// The server as a child process, started as an agent's host starts it: its standard input and
/// output are pipes. It inherits this process's environment and standard error.
class ServerChild {
 public:
  /// Starts the program at this path. Throws std::system_error if that fails.
  explicit ServerChild(std::string program);
  /// Closes the server's input, which ends it, and waits for that.
  ~ServerChild();
  ServerChild(const ServerChild&) = delete;
  ServerChild& operator=(const ServerChild&) = delete;

  void send(std::string_view line);
  /// The next line of the server's output. Throws std::runtime_error if it has closed it.
  std::string receive();
  /// Closes the server's input and returns its exit status, or -1 if a signal ended it.
  int finish();

 private:
  pid_t process_ = -1;
  std::FILE* input_ = nullptr;
  std::FILE* output_ = nullptr;
};

}  // namespace demo
