#include "tests/reliability/recorded_open.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

// A single write to a file opened for appending: launches at the same time are all recorded.
constexpr std::string_view script = R"(#!/bin/sh
echo >>"$HOME/launches"
[ ! -e "$HOME/on-launch" ] || . "$HOME/on-launch"
)";

}  // namespace

RecordedOpen::RecordedOpen() {
  const fs::path open = folder() / "open";
  std::ofstream(open) << script;
  fs::permissions(open, fs::perms::owner_all);
}

std::size_t RecordedOpen::launches(const TemporaryHome& home) {
  std::ifstream file(home.home() / "launches");
  return static_cast<std::size_t>(
      std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n'));
}

void RecordedOpen::onLaunch(const TemporaryHome& home, std::string_view commands) {
  std::ofstream(home.home() / "on-launch") << commands << "\n";
}
