#pragma once

#include <string_view>

#include "bridge/endpoint.h"
#include "common/bytes.h"
#include "json/value.h"

namespace bridge {

/// The bytes of one request to the desktop application: the compact JSON text of an object and
/// nothing else. `tool` is text as Value::string() returns it; `arguments` is an object.
common::Bytes appRequest(const Endpoint& endpoint, std::string_view tool, json::Value arguments);

}  // namespace bridge
