#include <fstream>
#include <iterator>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

// An `open` that behaves unusually. The application listens all the time, but only `open` publishes
// its endpoint.
class UnusualOpen : public Conversation {
 protected:
  UnusualOpen() {
    fs::create_directory(folder);
    setup.overUsrBin = folder;
  }

  void SetUp() override {
    Conversation::SetUp();
    fs::rename(endpointFile.path(), unpublished);
  }

  // Makes an executable `open` with these bytes.
  void makeOpen(std::string_view text) const {
    std::ofstream(folder / "open") << text;
    fs::permissions(folder / "open", fs::perms::all);
  }

  // The shell command that publishes the endpoint.
  std::string publishCommand() const {
    return "mv '" + unpublished.string() + "' '" + endpointFile.path().string() + "'\n";
  }

  void expectNotStarted() {
    const auto start = Clock::now();
    EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted));
    EXPECT_LT(Clock::now() - start, startLimit);
    EXPECT_TRUE(hasNoFurtherReply());
  }

  fs::path folder = home.folder() / "odd";
  fs::path unpublished = home.folder() / "unpublished.json";
};

class OpenThatReads : public UnusualOpen {
 protected:
  OpenThatReads() {
    makeOpen("#!/bin/sh\n: >'" + started.string() + "'\nread -r line\nprintf '%s' \"$line\" >'" +
             readLine.string() + "'\n" + publishCommand());
  }

  fs::path started = home.folder() / "started";
  fs::path readLine = home.folder() / "line";
};

// It inherits the server's standard input. The server reads nothing while it waits, so each line
// goes to one of the two, whole.
TEST_F(OpenThatReads, ReadsOneLineAndLeavesTheOthers) {
  sendLine(toolCall(R"({"name":"x"})", "1"));
  const auto deadline = Clock::now() + Launches::generous;
  while (!fs::exists(started) && Clock::now() < deadline) std::this_thread::sleep_for(5ms);
  sendLine(request("read", "2"));
  sendLine(request("not read", "3"));
  const json call = receive();
  EXPECT_EQ(call.at("id"), 1);
  EXPECT_EQ(call.at("result").size(), 1U);
  std::ifstream file(readLine);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), request("read", "2"));
  EXPECT_EQ(receive().at("id"), 3);
  EXPECT_TRUE(hasNoFurtherReply());
}

class OpenThatWrites : public UnusualOpen {
 protected:
  OpenThatWrites() { makeOpen("#!/bin/sh\necho 'No such application'\n" + publishCommand()); }
};

TEST_F(OpenThatWrites, DoesNotBreakTheReplies) {
  sendLine(toolCall(R"({"name":"x"})", "1"));
  EXPECT_EQ(receiveUncheckedLine(), "No such application");
  EXPECT_EQ(receive().at("id"), 1);
  EXPECT_TRUE(hasNoFurtherReply());
  expectCleanExit();
}

class OpenThatHangs : public UnusualOpen {
 protected:
  OpenThatHangs() { makeOpen("#!/bin/sh\n" + publishCommand() + "exec sleep 600\n"); }
};

TEST_F(OpenThatHangs, DoesNotDelayTheCall) {
  EXPECT_EQ(callTool("x").size(), 1U);
  expectCleanExit();
}

class OpenThatFails : public UnusualOpen {
 protected:
  OpenThatFails() { makeOpen("#!/bin/sh\n" + publishCommand() + "exit 1\n"); }
};

TEST_F(OpenThatFails, IsNotNoticed) {
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_TRUE(hasNoFurtherReply());
}

class OpenThatIsAFolder : public UnusualOpen {
 protected:
  OpenThatIsAFolder() { fs::create_directory(folder / "open"); }
};

TEST_F(OpenThatIsAFolder, CannotBeStarted) {
  expectNotStarted();
}

class OpenThatIsNotExecutable : public UnusualOpen {
 protected:
  OpenThatIsNotExecutable() {
    makeOpen("#!/bin/sh\n" + publishCommand());
    fs::permissions(folder / "open", fs::perms::owner_read | fs::perms::others_read);
  }
};

TEST_F(OpenThatIsNotExecutable, CannotBeStarted) {
  expectNotStarted();
}

class OpenWithoutInterpreter : public UnusualOpen {
 protected:
  OpenWithoutInterpreter() { makeOpen(publishCommand()); }
};

TEST_F(OpenWithoutInterpreter, CannotBeStarted) {
  expectNotStarted();
}

class OpenWhoseInterpreterIsMissing : public UnusualOpen {
 protected:
  OpenWhoseInterpreterIsMissing() { makeOpen("#!/no/such/program\n" + publishCommand()); }
};

TEST_F(OpenWhoseInterpreterIsMissing, CannotBeStarted) {
  expectNotStarted();
}

class OpenThatIsEmpty : public UnusualOpen {
 protected:
  OpenThatIsEmpty() { makeOpen(""); }
};

TEST_F(OpenThatIsEmpty, CannotBeStarted) {
  expectNotStarted();
}

}  // namespace
