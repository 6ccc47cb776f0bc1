#pragma once

#include <optional>

#include "json/text.h"
#include "json/value.h"

namespace server {

/// The beginning of a reply: an object with "jsonrpc" and the "id" of the request, null if it
/// had none. What follows is the "result" or "error" member and the closing brace.
json::Text openReply(const std::optional<json::Value>& id);

}  // namespace server
