#include "standin/demo/application.h"

#include <chrono>
#include <fstream>
#include <utility>

namespace fs = std::filesystem;

namespace demo {
namespace {

void writeText(const fs::path& file, std::string_view text) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

// Takes no space on most file systems.
void writeZeros(const fs::path& file, std::uintmax_t bytes) {
  writeText(file, "");
  fs::resize_file(file, bytes);
}

}  // namespace

void prepareDrives(const fs::path& folder) {
  writeText(folder / "Studio/Plans/Harbour plan.md",
            "# Harbour plan\n\nStart with the west quay.\n");
  writeText(folder / "Studio/Plans/Roof garden.md", "# Roof garden\n\nMoss, thyme, two benches.\n");
  writeZeros(folder / "Studio/Photos/panorama.raw", 24'000'000);
  writeZeros(folder / "Archive/Photos/panorama.raw", 24'000'000);
  const fs::path recording = folder / "Archive/old recording.wav";
  writeZeros(recording, 36'000'000);
  constexpr auto sixYears = std::chrono::hours(24 * 365 * 6);
  fs::last_write_time(recording, fs::file_time_type::clock::now() - sixYears);
}

Application::Application(const fs::path& home, const fs::path& folder)
    : drives_(folder),
      token_(standin::newToken()),
      dispatch_(drives_, token_),
      listener_([this](std::string_view request) { return answer(request); }),
      agentFile_(home, listener_.port(), token_) {}

Application::TwoDrives::TwoDrives(const fs::path& folder) {
  add(folder / "Studio", true);
  add(folder / "Archive", false);
}

std::string Application::answer(std::string_view request) {
  std::string reply = dispatch_.answer(request);
  const std::scoped_lock lock(mutex_);
  exchanges_.push_back({.request = std::string(request), .reply = reply});
  return reply;
}

std::vector<Exchange> Application::takeExchanges() {
  const std::scoped_lock lock(mutex_);
  return std::exchange(exchanges_, {});
}

}  // namespace demo
