#pragma once

#include <functional>
#include <string_view>

#include "bridge/call_app.h"
#include "json/value.h"

/// The Model Context Protocol as this server speaks it, revision 2024-11-05.
namespace server {

/// Writes one reply, the compact text of a JSON object, to standard output and ends its line.
/// The text is one write, the line feed a second. Returns when all of it is written; a write
/// that fails is given up. Main thread only.
void writeReply(std::string_view reply);

/// What handle() reaches the rest of the world by.
struct Surroundings {
  std::function<bridge::CallResult(std::string_view tool, json::Value arguments)> callApp =
      bridge::callApp;
  std::function<void(std::string_view reply)> writeReply = server::writeReply;
};

/// Answers one message of the agent's host, a JSON object, with at most one reply: to
/// "initialize", "tools/list" and "tools/call" always, to anything else, if it has an id, that
/// the method is unknown. Keeps nothing from one call to the next. Returns when the reply is
/// written, which for a tool call can take as long as bridge::callApp.
void handle(json::Value request, const Surroundings& surroundings = {});

}  // namespace server
