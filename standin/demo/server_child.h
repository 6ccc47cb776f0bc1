#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace demo {

/// The server as a child process, spoken to over its standard input and output as an agent
/// host does. Its standard error and environment are this process's own.
class ServerChild {
 public:
  /// Starts the command. Throws std::system_error when it can't be started.
  explicit ServerChild(std::vector<std::string> command);
  /// Ends the child if it still runs.
  ~ServerChild();
  ServerChild(const ServerChild&) = delete;
  ServerChild& operator=(const ServerChild&) = delete;

  /// Sends one line; false when the server takes no more.
  bool send(std::string_view line);
  /// The next whole line, without its end; none when the server has closed its output or no
  /// line was complete within the limit.
  std::optional<std::string> receive(std::chrono::milliseconds within);
  /// Closes the server's input and waits for it to end by itself. True if it wrote nothing
  /// more and ended with status 0 within the limit.
  bool finish(std::chrono::milliseconds within);

 private:
  void closeInput();

  pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string received_;
};

}  // namespace demo
