#pragma once

#include <string_view>

#include "bridge/endpoint.h"
#include "json/text.h"
#include "json/value.h"

namespace bridge {

/// The bytes of one request to the desktop application: compact JSON text, nothing before or
/// behind it. `arguments` is an object; `tool` is UTF-8 as Value::string() gives it.
json::Text appRequest(const Endpoint& endpoint, std::string_view tool, json::Value arguments);

}  // namespace bridge
