#pragma once

#include <string>

/// How a shell command ended, and what it printed on its standard output and error.
struct CommandResult {
  int status = -1;  ///< the exit status, or -1 if a signal ended it
  std::string output;
};

/// Runs a shell command, whose output is a pipe unless it is redirected.
CommandResult runInShell(const std::string& command);

/// The same on a terminal with this many columns.
CommandResult runOnTerminal(const std::string& command, int columns);

/// The text as one word of a shell command.
std::string quoted(const std::string& text);
