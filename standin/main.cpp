// quillmark-standin: plays the desktop application for the server while developing. It serves
// folders of this computer as drives, and really does what each tool promises.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <vector>

#include "standin/agent_file.h"
#include "standin/dispatch.h"
#include "standin/listener.h"
#include "standin/random_hex.h"

namespace {

constexpr std::string_view usage =
    "Usage: quillmark-standin [--read-only] FOLDER...\n"
    "Serves each folder as a drive until interrupted.\n";

struct Options {
  std::vector<std::filesystem::path> folders;
  bool writable = true;
  bool understood = true;
};

Options optionsFrom(int count, char** words) {
  Options options;
  for (const std::string_view word : std::vector<std::string_view>(words + 1, words + count)) {
    if (word == "--read-only") {
      options.writable = false;
    } else if (word.starts_with('-')) {
      options.understood = false;
    } else {
      options.folders.emplace_back(word);
    }
  }
  options.understood = options.understood && !options.folders.empty();
  return options;
}

int failed(std::string_view sentence) {
  std::cerr << "quillmark-standin: " << sentence << '\n';
  return EXIT_FAILURE;
}

int serve(standin::Drives& drives, const char* home) {
  const std::string token = standin::randomHex(16);
  const standin::Dispatch dispatch(drives, token);
  asio::io_context context;
  asio::signal_set signals(context, SIGINT, SIGTERM, SIGHUP);
  signals.async_wait([&](const std::error_code&, int) { context.stop(); });
  const standin::Listener listener(
      context, [&](std::string_view request) { return dispatch.answer(request); });
  const auto file = standin::AgentFile::publish(home, listener.port(), token);
  if (!file) return failed(file.error().sentence);
  std::cout << "Serving " << drives.names() << " on 127.0.0.1:" << listener.port()
            << "; Ctrl-C stops.\n"
            << std::flush;
  standin::runOnThreads(context);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** words) try {
  const Options options = optionsFrom(count, words);
  if (!options.understood) {
    std::cerr << usage;
    return 2;
  }
  const char* const home = std::getenv("HOME");
  if (home == nullptr || *home == '\0') return failed("HOME is not set.");
  const auto drives = standin::Drives::open(options.folders, options.writable);
  return drives ? serve(**drives, home) : failed(drives.error().sentence);
} catch (const std::exception& failure) {
  return failed(failure.what());
}
