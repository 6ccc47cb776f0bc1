#pragma once

#include <functional>
#include <string_view>

#include "bridge/call_app.h"
#include "json/value.h"

/// The Model Context Protocol, revision 2024-11-05.
namespace server {

/// Writes a reply, the compact text of a JSON object, to standard output as one line. The text is
/// one write, the line feed a second one. Returns when everything is written or a write has failed,
/// which is not reported. Main thread only.
void writeReply(std::string_view reply);

/// handle()'s side effects, replaceable in tests.
struct HandleDependencies {
  std::function<bridge::CallResult(std::string_view tool, json::Value arguments)> callApp =
      bridge::callApp;
  std::function<void(std::string_view reply)> writeReply = server::writeReply;
};

/// Handles one message from the agent's host, a JSON object, and writes at most one reply.
/// "initialize", "tools/list" and "tools/call" are always answered. Any other request gets "Unknown
/// method"; a notification gets nothing. Keeps no state between calls. Blocks as long as
/// bridge::callApp(). Main thread only.
void handle(json::Value request, const HandleDependencies& dependencies = {});

}  // namespace server
