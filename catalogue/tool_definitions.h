#pragma once

#include <string_view>

/// The whole catalogue as a JSON array, an object with "name", "description" and
/// "inputSchema" for each tool, in catalogue order. It is laid out while the program is
/// compiled, so that announcing the tools is copying out text. Any thread.
std::string_view toolDefinitions();
