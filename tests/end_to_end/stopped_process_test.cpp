#include <atomic>
#include <csignal>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// Stops and continues a process again and again.
class StopsAndContinues {
 public:
  explicit StopsAndContinues(pid_t process)
      : thread_([this, process] {
          while (!done_) {
            ::kill(process, SIGSTOP);
            std::this_thread::sleep_for(2ms);
            ::kill(process, SIGCONT);
            std::this_thread::sleep_for(1ms);
          }
        }) {}
  StopsAndContinues(const StopsAndContinues&) = delete;
  StopsAndContinues& operator=(const StopsAndContinues&) = delete;
  ~StopsAndContinues() {
    done_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> done_ = false;
  std::thread thread_;
};

// With blocking and with non-blocking pipes.
class StoppedProcess : public Conversation, public testing::WithParamInterface<bool> {
 protected:
  StoppedProcess() { setup.nonBlockingPipes = GetParam(); }

  static std::string content() {
    std::string text;
    while (text.size() < 4'000'000) text += std::to_string(text.size()) + ' ';
    return text;
  }
};

TEST_P(StoppedProcess, ReceivesAndForwardsALongLineWhole) {
  const json arguments = {{"content", content()}};
  {
    const StopsAndContinues stops(server->pid());
    EXPECT_EQ(callTool("write_file", arguments).size(), 1U);
  }
  EXPECT_TRUE(json::parse(app.record(1).received).at("arguments") == arguments);
  expectCleanExit();
}

TEST_P(StoppedProcess, ReceivesAndWritesABigReplyWhole) {
  json result;
  {
    const StopsAndContinues stops(server->pid());
    result = callWithScript(succeed("[\"" + content() + "\"]"));
  }
  const std::string text = result.at("content").at(0).at("text");
  EXPECT_TRUE(text == "[\n  \"" + content() + "\"\n]");
  expectCleanExit();
}

INSTANTIATE_TEST_SUITE_P(Pipes, StoppedProcess, testing::Bool(), [](const auto& parameter) {
  return parameter.param ? "NonBlocking" : "Blocking";
});

}  // namespace
