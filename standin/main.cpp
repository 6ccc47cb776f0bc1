// quillmark-standin: plays the desktop application. It serves folders of this computer as drives
// and does what the tools promise, until it is interrupted.
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <vector>

#include "standin/agent_file.h"
#include "standin/demo/call_log.h"
#include "standin/dispatch.h"
#include "standin/listener.h"
#include "standin/refusal.h"

namespace {

constexpr std::string_view usage =
    "Usage: quillmark-standin [--read-only] HOME FOLDER...\n"
    "Serves each folder as a drive. The server finds it if HOME is its home folder.\n";

// Call it before threads are started: they inherit the mask.
sigset_t blockSignalsToStop() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

void serve(const std::filesystem::path& home, standin::Drives& drives, bool writable) {
  const sigset_t signals = blockSignalsToStop();
  const std::string token = standin::newToken();
  const standin::Dispatch dispatch(drives, token);
  demo::CallLog log(std::cout, demo::terminalOf(STDOUT_FILENO));
  const standin::Listener listener([&](std::string_view request) {
    std::string reply = dispatch.answer(request);
    log.add(request, reply);
    return reply;
  });
  const standin::AgentFile file(home, listener.port(), token);
  std::cout << "Serving " << standin::listInQuotes(drives.all(), &standin::Drive::name)
            << (writable ? " for reading and writing." : " for reading only.")
            << " Waiting for calls; Ctrl-C ends this.\n"
            << std::flush;
  int received = 0;
  sigwait(&signals, &received);
}

}  // namespace

int main(int count, char** words) try {
  std::vector<std::string_view> arguments(words + 1, words + count);
  const bool readOnly = !arguments.empty() && arguments.front() == "--read-only";
  if (readOnly) arguments.erase(arguments.begin());
  if (arguments.size() < 2 || arguments.front().starts_with('-')) {
    std::cerr << usage;
    return 2;
  }
  standin::Drives drives;
  for (std::size_t i = 1; i < arguments.size(); ++i) drives.add(arguments[i], !readOnly);
  serve(arguments.front(), drives, !readOnly);
  return EXIT_SUCCESS;
} catch (const std::exception& failure) {
  std::cerr << "quillmark-standin: " << failure.what() << '\n';
  return EXIT_FAILURE;
}
