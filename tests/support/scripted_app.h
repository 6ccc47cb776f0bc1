#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/app_connection.h"

/// A stand-in for the desktop application. It listens on a port of 127.0.0.1, plays a script
/// on each connection, and keeps a record of each. A tool call makes two connections, the
/// probe's and the call's, so scripts are mostly given in pairs.
///
/// The test's thread calls it; scripts run on a thread for each connection. Connections are
/// counted from 0. After its script, a connection stays open until the server closes it.
class ScriptedApp {
 public:
  using Script = std::function<void(AppConnection&)>;
  using Duration = std::chrono::milliseconds;
  static constexpr Duration generous = std::chrono::seconds(10);

  /// Listens at once.
  ScriptedApp();
  ~ScriptedApp();
  ScriptedApp(const ScriptedApp&) = delete;
  ScriptedApp& operator=(const ScriptedApp&) = delete;

  int port() const { return port_; }

  /// Adds scripts for the next connections, one each.
  void script(std::vector<Script> scripts);
  /// The script of every connection that has none of its own; unless told, it is a success
  /// with an empty result.
  void otherwise(Script script);
  /// From now on a connection is accepted only when the one before it has closed.
  void serveOneAtATime() { oneAtATime_ = true; }
  /// Lets one connection go on that is, or will be, in waitForRelease().
  void release();
  /// Refuses connections until listenAgain(), which takes the same port. May be called from
  /// a script.
  void stopListening();
  void listenAgain();

  std::size_t connectionCount();
  /// True once there have been that many connections.
  bool waitForConnections(std::size_t count, Duration within = generous);
  bool waitUntilClosedByServer(std::size_t index, Duration within = generous);
  bool waitUntilReceived(std::size_t index, std::size_t bytes, Duration within = generous);
  /// What is known of that connection, which must exist.
  ConnectionRecord record(std::size_t index);

 private:
  bool listenOn(int port);
  void acceptConnections();
  void serve(int socket, std::size_t index);
  Script scriptFor();
  void wakeAcceptor();
  template <typename Condition>
  bool waitFor(Duration within, Condition condition);

  AppState state_;
  std::deque<Script> scripts_;
  Script otherwise_;
  std::vector<std::thread> threads_;
  std::atomic<bool> oneAtATime_ = false;
  std::atomic<int> listener_ = -1;
  int port_ = 0;
  int reservation_ = -1;
  int wakeRead_ = -1;
  int wakeWrite_ = -1;
  std::thread acceptor_;
};
