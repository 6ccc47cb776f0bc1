#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "tests/support/request_end.h"

/// What is known of one connection that the server made to the scripted application.
struct ConnectionRecord {
  /// Every byte that came, also those after the request's end.
  std::string received;
  std::chrono::steady_clock::time_point opened;
  /// When the server closed its end; empty while it is open.
  std::optional<std::chrono::steady_clock::time_point> closedByServer;
};

/// What a scripted application and its connections share; the mutex guards all of it.
struct AppState {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<ConnectionRecord> records;
  std::size_t released = 0;
  bool ending = false;
};

/// The application's end of one connection, in the words in which scripts are written.
/// Used from the thread that runs the script of this connection. Every wait ends early when
/// the test is over; a call on a connection that is gone does nothing.
class AppConnection {
 public:
  using Duration = std::chrono::milliseconds;

  /// Takes the socket over. The index is that of the connection's record.
  AppConnection(int socket, AppState& state, std::size_t index);
  ~AppConnection();
  AppConnection(const AppConnection&) = delete;
  AppConnection& operator=(const AppConnection&) = delete;

  /// Reads until the JSON object that the request consists of is complete.
  void readRequest();
  /// The same in small pieces with a pause after each.
  void readRequestSlowly(std::size_t piece, Duration pause);
  /// Reads some of the request, at least this many bytes.
  void readAtLeast(std::size_t bytes);
  /// Hands all of it to the system in one call, as far as the system takes it at once.
  void write(std::string_view bytes);
  void pause(Duration time);
  /// Waits until the test calls ScriptedApp::release().
  void waitForRelease();
  /// Ends the stream towards the server, which may still be heard.
  void halfClose();
  void hangUp();
  /// Breaks the connection off, so that the server sees an error.
  void reset();
  /// Takes in whatever comes until the server closes its end.
  void waitForServerToClose();

 private:
  bool receive(std::size_t atMost);

  int socket_;
  AppState& state_;
  std::size_t index_;
  std::size_t scanned_ = 0;
  RequestEnd end_;
};
