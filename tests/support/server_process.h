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

/// How to start a server, where a test needs something unusual.
struct ServerSetup {
  /// The program and its first arguments; empty: the built server.
  std::vector<std::string> command;
  std::vector<std::string> arguments;
  /// Entries such as "NAME=value", added to the environment of the test.
  std::vector<std::string> environment;
  /// Empty: the working directory of the test.
  std::filesystem::path directory;
  /// A folder whose files cover those of /usr/bin for the server alone.
  std::filesystem::path overUsrBin;
  bool nonBlockingPipes = false;
  /// Standard output is a datagram socket, so that each write is a message; see readWrite().
  bool datagramOutput = false;
  bool signalsBlockedAndIgnored = false;
  /// The server inherits a descriptor besides the standard streams.
  bool strayDescriptor = false;
  /// Numbers of standard streams that the server starts without.
  std::vector<int> closedStreams;
};

/// How a process ended: it exited with a code, or a signal ended it.
struct ExitStatus {
  std::optional<int> code;
  std::optional<int> signal;
  std::chrono::duration<double> processorTime{};
};

/// The built server as a child process. Its standard input and output are pipes, and its standard
/// error is a file. For one thread. The functions that wait throw std::runtime_error after
/// their time. The destructor ends the input, so that an idle server exits by itself, and kills the
/// process if it still runs 2 s later.
class ServerProcess {
 public:
  using Duration = std::chrono::milliseconds;
  /// Long enough for anything that is going to happen, on any machine.
  static constexpr Duration generous = std::chrono::seconds(120);

  /// Throws PrivateMountsRefused if the setup needs mounts and the system refuses them.
  explicit ServerProcess(const TemporaryHome& home, const ServerSetup& setup = {});
  ~ServerProcess();
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  /// Writes these bytes to the server's standard input.
  void send(std::string_view bytes);
  void closeInput();
  /// Closes the reading end of the server's standard output.
  void closeOutput();

  /// The next line of output without its line feed; none if it is not complete in time.
  std::optional<std::string> readLine(Duration within = generous);
  /// The output that is there, at most this many bytes. Empty if there is none in time.
  std::string readSome(std::size_t atMost, Duration within = generous);
  /// With datagramOutput: the bytes of one write.
  std::string readWrite();

  /// Waits for the end of the process and reads its output meanwhile.
  ExitStatus waitForExit(Duration within = generous);
  /// After waitForExit(): the output that no call has returned.
  const std::string& unreadOutput() const { return unread_; }

  /// Everything written to standard error so far.
  std::string standardError() const;
  pid_t pid() const { return pid_; }

 private:
  bool receiveOutput(Duration within, std::size_t atMost);
  bool collectExit();
  bool endsWithin(Duration time);

  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::unique_ptr<FILE, int (*)(FILE*)> error_;
  std::string unread_;
  ExitStatus exit_;
  bool ended_ = false;
};
