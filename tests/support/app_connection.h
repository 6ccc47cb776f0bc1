#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "tests/support/reply_writer.h"
#include "tests/support/request_end.h"

/// One connection that the server made to the scripted application.
struct ConnectionRecord {
  using Clock = std::chrono::steady_clock;

  std::string received;  ///< every byte, also those after the end of the request
  Clock::time_point opened;
  std::optional<Clock::time_point> closedByServer;
  Clock::duration longestGap{};  ///< of the reply; see ReplyWriter
};

/// What a scripted application and its connections share. The mutex guards all of it.
struct AppState {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<ConnectionRecord> records;
  std::size_t released = 0;
  bool ending = false;
};

/// The application's end of one connection, as a script uses it. For the thread that runs the
/// script. Every wait ends early when the test is over; calls on a closed connection do nothing.
class AppConnection {
 public:
  using Duration = std::chrono::milliseconds;

  /// Owns the socket. `index` is that of the connection's record.
  AppConnection(int socket, AppState& state, std::size_t index);
  ~AppConnection();
  AppConnection(const AppConnection&) = delete;
  AppConnection& operator=(const AppConnection&) = delete;

  /// Reads until the JSON object of the request is complete.
  void readRequest();
  /// The same in small pieces, with a pause after each.
  void readRequestSlowly(std::size_t piece, Duration pause);
  /// Reads at least this many bytes of the request.
  void readAtLeast(std::size_t bytes);
  /// Writes everything, as fast as the server reads. False if the server has closed the connection.
  bool write(std::string_view bytes);
  /// Writes these bytes again and again, with a pause after each time, until the server closes the
  /// connection.
  void writeUntilClosed(std::string_view bytes, Duration pause);
  void pause(Duration time);
  /// Waits until the test calls ScriptedApp::release().
  void waitForRelease();
  /// Ends the stream to the server. The other direction stays open.
  void halfClose();
  void close();
  /// Closes with a reset, so that the server gets an error.
  void reset();
  /// Reads and records everything until the server closes its end.
  void waitForServerToClose();

 private:
  bool receive(std::size_t atMost);

  int socket_;
  AppState& state_;
  std::size_t index_;
  std::size_t scanned_ = 0;
  RequestEnd end_;
  ReplyWriter writer_;
};
