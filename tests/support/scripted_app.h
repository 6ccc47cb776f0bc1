#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/app_connection.h"

/// A desktop application that does what a test wants. It listens on a port of 127.0.0.1, runs a
/// script on each connection, and keeps a record of each. A tool call makes two connections, one
/// for the probe and one for the call, so scripts mostly come in pairs.
///
/// The test's thread calls it; each script runs on a thread of its own. Connections are counted
/// from 0. After its script, a connection stays open until the server closes it.
class ScriptedApp {
 public:
  using Script = std::function<void(AppConnection&)>;
  using Duration = std::chrono::milliseconds;
  /// Long enough for anything that is going to happen, on any machine.
  static constexpr Duration generous = std::chrono::seconds(120);

  /// Listens at once.
  ScriptedApp();
  ~ScriptedApp();
  ScriptedApp(const ScriptedApp&) = delete;
  ScriptedApp& operator=(const ScriptedApp&) = delete;

  int port() const { return port_; }

  /// Adds scripts for the next connections, one each.
  void script(std::vector<Script> scripts);
  /// The script of each connection that has none of its own. Initially, a success with an empty
  /// result.
  void setDefault(Script script);
  /// From now on it accepts a connection only after the previous one has closed.
  void serveOneAtATime() { oneAtATime_ = true; }
  /// Ends one call of waitForRelease(), now or in the future.
  void release();
  /// Refuses connections until listenAgain(), which uses the same port. Scripts may call it.
  void stopListening();
  void listenAgain();

  std::size_t connectionCount();
  /// True once there have been that many connections.
  bool waitForConnections(std::size_t count, Duration within = generous);
  bool waitUntilClosedByServer(std::size_t index, Duration within = generous);
  bool waitUntilReceived(std::size_t index, std::size_t bytes, Duration within = generous);
  /// The record of that connection, which must exist.
  ConnectionRecord record(std::size_t index);

 private:
  bool listenOn(int port);
  void acceptConnections();
  void serve(int socket, std::size_t index);
  Script nextScript();
  void wakeAcceptor();
  template <typename Condition>
  bool waitFor(Duration within, Condition condition);

  AppState state_;
  std::deque<Script> scripts_;
  Script default_;
  std::vector<std::thread> threads_;
  std::atomic<bool> oneAtATime_ = false;
  std::atomic<int> listener_ = -1;
  int port_ = 0;
  int reservation_ = -1;
  int wakeRead_ = -1;
  int wakeWrite_ = -1;
  std::thread acceptor_;
};
