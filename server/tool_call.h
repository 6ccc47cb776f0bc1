#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "bridge/call_app.h"
#include "json/text.h"
#include "json/value.h"

namespace server {

/// Carries out a "tools/call" request by `callApp` and returns the reply: a tool result with
/// the application's result as pretty-printed text, or with the failure's message. A name or
/// arguments that are missing or of another type are taken as empty. Blocks as long as the call.
json::Text toolCallReply(
    json::Value request, const std::optional<json::Value>& id,
    const std::function<bridge::CallResult(std::string_view tool, json::Value arguments)>& callApp);

}  // namespace server
