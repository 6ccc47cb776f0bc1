#pragma once

#include <string_view>

#include "benchmarks/driver/contestant.h"
#include "benchmarks/driver/payloads.h"

/// Each check compares, as values read by an independent parser, what a contestant wrote with
/// what it should have written, and throws std::runtime_error saying who was wrong in what.

void checkInitialize(const Contestant& who, std::string_view answer);
void checkToolsList(const Contestant& who, std::string_view answer);

/// The answer to a tool call: its text must read back as the application's result. The floor's
/// is compared byte by byte: its text is the application's result as it stands.
void checkToolAnswer(const Contestant& who, std::string_view answer, const ToolCall& call);

/// What the application was sent: the probe, and the call with its arguments, both with the
/// token of the endpoint file.
void checkRequests(const Contestant& who, std::string_view probe, std::string_view sent,
                   const ToolCall& call, std::string_view token);
