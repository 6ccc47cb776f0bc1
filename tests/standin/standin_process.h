#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

/// The built stand-in as a child process with a home folder of its own. Its standard error
/// goes nowhere.
class StandinProcess {
 public:
  /// Starts it with these words on its command line; throws std::system_error when it can't.
  StandinProcess(const std::filesystem::path& home, std::vector<std::string> words);
  /// Kills it if it still runs.
  ~StandinProcess();
  StandinProcess(const StandinProcess&) = delete;
  StandinProcess& operator=(const StandinProcess&) = delete;

  /// The next line it prints, without its end, waiting at most ten seconds for each part.
  std::string readLine();
  /// Sends the signal and returns waitForEnd().
  int stop(int signal);
  /// The status it ends with, or -1 when it was killed or ran on for ten seconds.
  int waitForEnd();

 private:
  bool readByte(char& byte);

  pid_t process_ = -1;
  int output_ = -1;
};
