#ifdef __linux__

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <system_error>

#include "tests/support/conversation.h"
#include "tests/support/sanitizers.h"

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

[[maybe_unused]] void setSoftLimit(pid_t process, __rlimit_resource resource, rlim_t value) {
  rlimit limit{};
  ASSERT_EQ(::prlimit(process, resource, nullptr, &limit), 0);
  limit.rlim_cur = value;
  ASSERT_EQ(::prlimit(process, resource, &limit, nullptr), 0);
}

// UndefinedBehaviorSanitizer opens a pipe to check the type of an object and reports an error if it
// cannot.
#if !UNDER_UNDEFINED_BEHAVIOR_SANITIZER

// A server that may open few descriptors, or none.
class FewDescriptors : public UnlaunchableConversation {
 protected:
  // Returns when the server has been loaded.
  void SetUp() override {
    UnlaunchableConversation::SetUp();
    if (server) {
      EXPECT_TRUE(hasNoFurtherReply());
    }
  }

  std::size_t openDescriptors() const {
    const fs::directory_iterator all("/proc/" + std::to_string(server->pid()) + "/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
  }

  void allow(std::size_t descriptors) { setSoftLimit(server->pid(), RLIMIT_NOFILE, descriptors); }

  // The next call succeeds when there are descriptors again.
  void expectNextCallSucceeds() {
    allow(100);
    EXPECT_EQ(callTool("again").size(), 1U);
    EXPECT_TRUE(hasNoFurtherReply());
  }
};

TEST_F(FewDescriptors, NoneForTheEndpointFileMakesTheCallFail) {
  allow(openDescriptors());
  EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted));
  EXPECT_EQ(app.connectionCount(), 0U);
  expectNextCallSucceeds();
}

TEST_F(FewDescriptors, OneIsEnoughForEveryCall) {
  const std::size_t before = openDescriptors();
  for (int call = 0; call < 3; ++call) {
    allow(before);
    EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted)) << call;
    allow(before + 1);
    EXPECT_EQ(callTool("x").size(), 1U) << call;
    EXPECT_EQ(openDescriptors(), before) << call;
  }
  expectNextCallSucceeds();
}

#endif

// These sanitizers reserve terabytes of address space.
#if !UNDER_ADDRESS_SANITIZER && !UNDER_THREAD_SANITIZER

// Running out of memory ends the process silently, without a part of a reply.
class LittleMemory : public Conversation {
 protected:
  static constexpr std::size_t mebibyte = 1 << 20;

  // Returns when the server has been loaded.
  void SetUp() override {
    Conversation::SetUp();
    if (server) {
      EXPECT_TRUE(hasNoFurtherReply());
    }
  }

  // Allows that much address space in addition to what is in use.
  void allow(std::size_t more) {
    std::ifstream file("/proc/" + std::to_string(server->pid()) + "/statm");
    std::size_t pages = 0;
    file >> pages;
    setSoftLimit(server->pid(), RLIMIT_AS,
                 pages * static_cast<std::size_t>(::getpagesize()) + more);
  }

  // Repeats the call if the application was late with a part of its reply.
  void expectAbortOfCall(const std::string& appReply) {
    std::optional<std::string> line;
    bool wasLate = false;
    do {
      app.script({succeed(), reply(appReply)});
      const std::size_t call = app.connectionCount() + 1;
      sendLine(toolCall(R"({"name":"x"})"));
      line = server->readLine();
      app.waitUntilClosedByServer(call);
      wasLate = app.record(call).longestGap >= ReplyWriter::lateGap;
    } while (line && wasLate);
    EXPECT_EQ(line, std::nullopt);
    expectAbortAfter("");
  }

  void expectAbortAfter(std::string_view output) {
    const ExitStatus status = server->waitForExit();
    EXPECT_EQ(status.signal, SIGABRT);
    EXPECT_EQ(server->unreadOutput(), output);
  }
};

TEST_F(LittleMemory, LineThatDoesNotFitEndsTheProcess) {
  sendLine(request("ping", "1"));
  const std::string earlier = receiveLine();
  sendLine(request("ping", "1"));
  allow(32 * mebibyte);
  try {
    server->send(R"({"id":2,"method":")" + std::string(200 * mebibyte, 'x') + "\"}\n");
  } catch (const std::system_error& brokenPipe) {
    EXPECT_EQ(brokenPipe.code(), std::errc::broken_pipe);
  }
  expectAbortAfter(earlier + "\n");
}

TEST_F(LittleMemory, ReplyOfTheApplicationThatDoesNotFitEndsTheProcess) {
  EXPECT_EQ(callTool("x").size(), 1U);
  allow(mebibyte);
  expectAbortOfCall(R"({"ok":true,"result":[")" + std::string(4'000'000, 'q') + R"("]})");
}

TEST_F(LittleMemory, ResultThatDoesNotFitIntoAReplyEndsTheProcess) {
  EXPECT_EQ(callTool("x").size(), 1U);
  // Each level is indented by two spaces, so that 400 KB become more than 100 MB.
  std::string deep(400, '[');
  for (int i = 0; i < 200'000; ++i) deep += "0,";
  deep += "0" + std::string(400, ']');
  allow(48 * mebibyte);
  expectAbortOfCall(R"({"ok":true,"result":)" + deep + "}");
}

TEST_F(LittleMemory, ReplyThatFitsIsWritten) {
  allow(48 * mebibyte);
  EXPECT_EQ(callWithScript(succeed("[\"" + std::string(1'000'000, 'q') + "\"]")).size(), 1U);
  EXPECT_TRUE(hasNoFurtherReply());
  expectCleanExit();
}

#endif

}  // namespace

#endif
