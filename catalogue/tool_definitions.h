#pragma once

#include <string_view>

/// The whole catalogue as the compact text of a JSON array: for each tool an object with "name",
/// "description" and "inputSchema", in catalogue order. Written on the first call, valid until the
/// process ends. Thread-safe.
std::string_view toolDefinitions();
