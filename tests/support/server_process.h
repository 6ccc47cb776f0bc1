#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/temporary_home.h"

/// How a server is started, where a test wants something else than the usual.
struct ServerSetup {
  std::vector<std::string> arguments;
  /// Entries such as "NAME=value", added to the test's own environment.
  std::vector<std::string> environment;
  /// Empty: the test's own working directory.
  std::filesystem::path directory;
  /// A folder whose files lie over those of /usr/bin, as seen by the server alone.
  std::filesystem::path overUsrBin;
  bool nonBlockingPipes = false;
  /// Standard output is a datagram socket, which keeps each write apart; see readWrite().
  bool datagramOutput = false;
  bool signalsBlockedAndIgnored = false;
  bool strayDescriptor = false;
  /// Numbers of standard streams that the host leaves closed.
  std::vector<int> closedStreams;
};

/// How a process ended: by exiting with a code, or by a signal.
struct ExitStatus {
  std::optional<int> code;
  std::optional<int> signal;
  std::chrono::duration<double> processorTime{};
};

/// The built server as a child process, seen from the agent host's side: its standard input
/// and output are pipes, its standard error is kept in a file. Used from one thread.
/// Every wait has a limit, and throws std::runtime_error when it is passed.
/// The process is killed at the end if it still runs.
class ServerProcess {
 public:
  using Duration = std::chrono::milliseconds;
  static constexpr Duration generous = std::chrono::seconds(20);

  /// Throws PrivateMountsRefused when the setup asks for mounts that cannot be had.
  explicit ServerProcess(const TemporaryHome& home, const ServerSetup& setup = {});
  ~ServerProcess();
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  /// Writes these bytes to the server's standard input.
  void send(std::string_view bytes, Duration within = std::chrono::seconds(60));
  void closeInput();
  /// Gives up the reading end of the server's standard output.
  void closeOutput();

  /// The next line of output without its line feed, or nothing when none is complete in time.
  std::optional<std::string> readLine(Duration within = generous);
  /// What output there is, at most this many bytes; empty when there is none in time.
  std::string readSome(std::size_t atMost, Duration within = generous);
  /// With datagramOutput: the bytes of one write.
  std::string readWrite(Duration within = generous);

  /// Waits for the end of the process, taking in its output meanwhile.
  ExitStatus waitForExit(Duration within = generous);
  /// After waitForExit(): the output that nobody has read.
  const std::string& unreadOutput() const { return unread_; }

  /// Everything written to standard error so far.
  std::string standardError() const;
  pid_t pid() const { return pid_; }

 private:
  bool takeOutput(Duration within, std::size_t atMost);
  bool collectExit();

  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::unique_ptr<FILE, int (*)(FILE*)> error_;
  std::string unread_;
  ExitStatus exit_;
  bool ended_ = false;
};
