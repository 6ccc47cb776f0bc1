#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// The built stand-in as a child process. Its standard error is discarded.
class StandinProcess {
 public:
  /// Starts it with these arguments. Throws std::system_error if that fails.
  explicit StandinProcess(std::vector<std::string> arguments);
  /// Kills it if it still runs.
  ~StandinProcess();
  StandinProcess(const StandinProcess&) = delete;
  StandinProcess& operator=(const StandinProcess&) = delete;

  /// The next line of output. What has been received so far, if nothing arrives for ten seconds.
  std::string readLine();
  /// Sends the signal and returns waitForEnd().
  int stop(int signal);
  /// The exit status, or -1 if the process is killed or still runs after ten seconds.
  int waitForEnd();

 private:
  bool readByte(char& byte);

  pid_t process_ = -1;
  int output_ = -1;
};
