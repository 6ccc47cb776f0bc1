// An application that is killed and started again: it publishes a new port and a new token, writes
// down each call before it answers, and ends when its folder is removed.
//
//   restarted_app HOME

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "tests/reliability/answering_app.h"
#include "tests/reliability/restarts/app_records.h"
#include "tests/support/endpoint_file.h"

namespace {

using namespace std::chrono_literals;
using nlohmann::json;

/// False if another application of this home folder runs. One that was killed may need a moment to
/// end.
bool becomeTheOnlyOne(const AppRecords& records) {
  const int lock = ::open(records.lockFile().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  for (int i = 0; i < 50; ++i) {
    if (::flock(lock, LOCK_EX | LOCK_NB) == 0) return true;  // until this process ends
    std::this_thread::sleep_for(10ms);
  }
  return false;
}

class RestartedApp {
 public:
  explicit RestartedApp(const AppRecords& records) : records_(records) {}

  void run() {
    const AnsweringApp app([this](const json& request) { return answer(request); });
    records_.publish(EndpointFile::text(app.port(), token_), ::getpid(), token_);
    while (std::filesystem::exists(records_.home())) std::this_thread::sleep_for(100ms);
  }

 private:
  std::string answer(const json& request) {
    if (request.value("token", "") != token_) return R"({"ok":false,"error":"wrong token"})";
    if (request.value("tool", "") == "drive_status") return R"({"ok":true,"result":{}})";
    const auto number = request.at("arguments").at("number").get<std::size_t>();
    pause();
    records_.carriedOut(number, token_);
    pause();
    return json{{"ok", true}, {"result", {number, token_}}}.dump();
  }

  /// So that it is also killed just before and after it carries out a call.
  void pause() { std::this_thread::sleep_for(std::chrono::microseconds(random_() % 5000)); }

  const AppRecords& records_;
  std::mt19937 random_{std::random_device{}()};
  std::string token_ = std::to_string(random_()) + "-" + std::to_string(::getpid());
};

}  // namespace

int main(int count, char** arguments) {
  std::signal(SIGPIPE, SIG_IGN);
  if (count != 2) return EXIT_FAILURE;
  try {
    const AppRecords records(arguments[1]);
    if (becomeTheOnlyOne(records)) RestartedApp(records).run();
    return EXIT_SUCCESS;
  } catch (const std::exception&) {  // the folder is being removed
    return EXIT_FAILURE;
  }
}
