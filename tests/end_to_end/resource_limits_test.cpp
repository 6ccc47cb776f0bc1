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

// Checking an object's type, that sanitizer opens a pipe, and takes it for a fault if it can't.
#if !UNDER_UNDEFINED_BEHAVIOR_SANITIZER

// A server that may have no more descriptors, at one step of a call or another.
class FewDescriptors : public UnlaunchableConversation {
 protected:
  // It is running, and no longer being loaded.
  void SetUp() override {
    UnlaunchableConversation::SetUp();
    if (server) {
      EXPECT_TRUE(staysSilent());
    }
  }

  std::size_t openNow() const {
    const fs::directory_iterator all("/proc/" + std::to_string(server->pid()) + "/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
  }

  void mayHave(std::size_t descriptors) { setSoftLimit(server->pid(), RLIMIT_NOFILE, descriptors); }

  // Whatever has failed, the next call is fine once there are descriptors again.
  void isFineAgain() {
    mayHave(100);
    EXPECT_EQ(callTool("again").size(), 1U);
    EXPECT_TRUE(staysSilent());
  }
};

TEST_F(FewDescriptors, NoneForTheEndpointFileIsNoEndpoint) {
  mayHave(openNow());
  EXPECT_EQ(callTool("x"), failure(couldNotBeStarted));
  EXPECT_EQ(app.connectionCount(), 0U);
  isFineAgain();
}

TEST_F(FewDescriptors, OneIsEnoughForEveryCall) {
  const std::size_t before = openNow();
  for (int call = 0; call < 3; ++call) {
    mayHave(before);
    EXPECT_EQ(callTool("x"), failure(couldNotBeStarted)) << call;
    mayHave(before + 1);
    EXPECT_EQ(callTool("x").size(), 1U) << call;
    EXPECT_EQ(openNow(), before) << call;
  }
  isFineAgain();
}

#endif

// Sanitizers reserve terabytes of address space, to begin with.
#if !UNDER_ADDRESS_SANITIZER && !UNDER_THREAD_SANITIZER

// Memory that cannot be had ends the process, silently, and with nothing half said.
class LittleMemory : public Conversation {
 protected:
  static constexpr std::size_t mebibyte = 1 << 20;

  // It is running, and no longer being loaded.
  void SetUp() override {
    Conversation::SetUp();
    if (server) {
      EXPECT_TRUE(staysSilent());
    }
  }

  // Bytes of address space beside those that are in use now.
  void mayHave(std::size_t more) {
    std::ifstream file("/proc/" + std::to_string(server->pid()) + "/statm");
    std::size_t pages = 0;
    file >> pages;
    setSoftLimit(server->pid(), RLIMIT_AS,
                 pages * static_cast<std::size_t>(::getpagesize()) + more);
  }

  void endsWithNoMoreThan(std::string_view output) {
    const ExitStatus status = server->waitForExit();
    EXPECT_EQ(status.signal, SIGABRT);
    EXPECT_EQ(server->unreadOutput(), output);
  }
};

TEST_F(LittleMemory, LineThatDoesNotFitEndsTheProcess) {
  say(request("ping", "1"));
  const std::string earlier = hearLine();
  say(request("ping", "1"));
  mayHave(32 * mebibyte);
  try {
    server->send(R"({"id":2,"method":")" + std::string(200 * mebibyte, 'x') + "\"}\n");
  } catch (const std::system_error& brokenPipe) {
    EXPECT_EQ(brokenPipe.code(), std::errc::broken_pipe);
  }
  endsWithNoMoreThan(earlier + "\n");
}

TEST_F(LittleMemory, ReplyOfTheApplicationThatDoesNotFitEndsTheProcess) {
  EXPECT_EQ(callTool("x").size(), 1U);
  app.script({answer(), succeed("[\"" + std::string(4'000'000, 'q') + "\"]")});
  mayHave(mebibyte);
  say(toolCall(R"({"name":"x"})"));
  endsWithNoMoreThan("");
}

TEST_F(LittleMemory, ResultThatDoesNotFitIntoAReplyEndsTheProcess) {
  EXPECT_EQ(callTool("x").size(), 1U);
  // Every level that lies deeper is written with two blanks more: 4 MB become over 100 MB.
  std::string deep(400, '[');
  for (int i = 0; i < 200'000; ++i) deep += "0,";
  deep += "0" + std::string(400, ']');
  app.script({answer(), succeed(deep)});
  mayHave(48 * mebibyte);
  say(toolCall(R"({"name":"x"})"));
  endsWithNoMoreThan("");
}

TEST_F(LittleMemory, WhatFitsIsAnswered) {
  mayHave(48 * mebibyte);
  app.script({answer(), succeed("[\"" + std::string(1'000'000, 'q') + "\"]")});
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_TRUE(staysSilent());
  sayGoodbye();
}

#endif

}  // namespace

#endif
