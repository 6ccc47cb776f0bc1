#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A server to be measured.
struct Contestant {
  std::string name;
  std::vector<std::string> command;  // the program, found by way of PATH, and its arguments

  /// The floor is known by its name: it is what the others are compared with, and the only one
  /// that may copy the application's result into its answer as it stands.
  bool isFloor() const { return name == "floor"; }
};

/// Reads NAME=COMMAND; the command is split at blanks. Throws std::invalid_argument.
Contestant parseContestant(std::string_view text);

/// The size in bytes of a contestant's program without its symbols, or 0 when its program is not
/// one that `strip` can read (a script, for example).
double strippedSize(const Contestant& contestant);
