#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "standin/demo/server_child.h"
#include "standin/demo/transcript.h"

namespace demo {

using nlohmann::json;
/// Keeps its members in the order in which they are written.
using Params = nlohmann::ordered_json;

/// Throws std::runtime_error unless the condition holds.
void expect(bool condition, const std::string& what);

/// The text of a tool's result. Throws std::runtime_error if the result is an error and should not
/// be, or the other way round.
std::string textOf(const json& result, bool shouldBeError);

/// The host's side of a session with the server. Shows what it sends. Throws std::runtime_error if
/// the server does not reply as a server should.
class Session {
 public:
  Session(const std::string& server, Transcript& transcript)
      : server_(server), transcript_(transcript) {}

  /// Sends a request, shown as it is sent, and returns the result.
  json request(std::string_view method, const Params& params);
  /// Sends a notification, shown as it is sent.
  void notify(std::string_view method);
  /// The last reply as it was received.
  const std::string& lastReply() const { return reply_; }

  /// Calls a tool, shows the call and the result as the agent sees them, and returns the result.
  json call(std::string_view tool, const Params& arguments);
  /// The same for a call that must fail. Returns the message.
  std::string refusedCall(std::string_view tool, const Params& arguments);

  /// Closes the server's input. The server must end with status 0.
  void finish();

 private:
  std::string next(std::string_view method, const Params& params);
  json resultOf(const std::string& message);

  ServerChild server_;
  Transcript& transcript_;
  int id_ = 0;
  std::string reply_;
};

}  // namespace demo
