#include <fstream>
#include <iterator>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

// An `open` of the system that is not as it should be. The application listens all the time,
// but its endpoint is published by nobody else.
class OddOpen : public Conversation {
 protected:
  OddOpen() {
    fs::create_directory(folder);
    setup.overUsrBin = folder;
  }

  void SetUp() override {
    Conversation::SetUp();
    fs::rename(endpointFile.path(), unpublished);
  }

  // An `open` of these bytes that may be executed.
  void openIs(std::string_view text) const {
    std::ofstream(folder / "open") << text;
    fs::permissions(folder / "open", fs::perms::all);
  }

  // What a shell does to publish the endpoint.
  std::string publishing() const {
    return "mv '" + unpublished.string() + "' '" + endpointFile.path().string() + "'\n";
  }

  void cannotBeStarted() {
    const auto start = Clock::now();
    EXPECT_EQ(callTool("x"), failure(couldNotBeStarted));
    EXPECT_LT(Seconds(Clock::now() - start), Seconds(2));
    EXPECT_TRUE(staysSilent());
  }

  fs::path folder = home.folder() / "odd";
  fs::path unpublished = home.folder() / "unpublished.json";
};

class OpenThatReads : public OddOpen {
 protected:
  OpenThatReads() {
    openIs("#!/bin/sh\n: >'" + started.string() + "'\nread -r line\nprintf '%s' \"$line\" >'" +
           taken.string() + "'\n" + publishing());
  }

  fs::path started = home.folder() / "started";
  fs::path taken = home.folder() / "taken";
};

// It has the server's standard input, and the server reads nothing while it waits: a line goes
// to one of them, whole.
TEST_F(OpenThatReads, TakesItsLineAndNoOther) {
  say(toolCall(R"({"name":"x"})", "1"));
  const auto deadline = Clock::now() + generous;
  while (!fs::exists(started) && Clock::now() < deadline) std::this_thread::sleep_for(5ms);
  say(request("taken", "2"));
  say(request("kept", "3"));
  const json call = hear();
  EXPECT_EQ(call.at("id"), 1);
  EXPECT_EQ(call.at("result").size(), 1U);
  std::ifstream file(taken);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), request("taken", "2"));
  EXPECT_EQ(hear().at("id"), 3);
  EXPECT_TRUE(staysSilent());
}

class OpenThatWrites : public OddOpen {
 protected:
  OpenThatWrites() { openIs("#!/bin/sh\necho 'No such application'\n" + publishing()); }
};

TEST_F(OpenThatWrites, LeavesTheRepliesWhole) {
  say(toolCall(R"({"name":"x"})", "1"));
  EXPECT_EQ(hearLine(), "No such application");
  EXPECT_EQ(hear().at("id"), 1);
  EXPECT_TRUE(staysSilent());
  sayGoodbye();
}

class OpenThatHangs : public OddOpen {
 protected:
  OpenThatHangs() { openIs("#!/bin/sh\n" + publishing() + "exec sleep 60\n"); }
};

TEST_F(OpenThatHangs, HoldsUpNobody) {
  EXPECT_EQ(callTool("x").size(), 1U);
  sayGoodbye();
}

class OpenThatFails : public OddOpen {
 protected:
  OpenThatFails() { openIs("#!/bin/sh\n" + publishing() + "exit 1\n"); }
};

TEST_F(OpenThatFails, IsNotNoticed) {
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_TRUE(staysSilent());
}

class OpenThatIsAFolder : public OddOpen {
 protected:
  OpenThatIsAFolder() { fs::create_directory(folder / "open"); }
};

TEST_F(OpenThatIsAFolder, CannotBeStarted) {
  cannotBeStarted();
}

class OpenThatIsNotExecutable : public OddOpen {
 protected:
  OpenThatIsNotExecutable() {
    openIs("#!/bin/sh\n" + publishing());
    fs::permissions(folder / "open", fs::perms::owner_read | fs::perms::others_read);
  }
};

TEST_F(OpenThatIsNotExecutable, CannotBeStarted) {
  cannotBeStarted();
}

class OpenWithoutInterpreter : public OddOpen {
 protected:
  OpenWithoutInterpreter() { openIs(publishing()); }
};

TEST_F(OpenWithoutInterpreter, CannotBeStarted) {
  cannotBeStarted();
}

class OpenWhoseInterpreterIsMissing : public OddOpen {
 protected:
  OpenWhoseInterpreterIsMissing() { openIs("#!/no/such/program\n" + publishing()); }
};

TEST_F(OpenWhoseInterpreterIsMissing, CannotBeStarted) {
  cannotBeStarted();
}

class OpenThatIsEmpty : public OddOpen {
 protected:
  OpenThatIsEmpty() { openIs(""); }
};

TEST_F(OpenThatIsEmpty, CannotBeStarted) {
  cannotBeStarted();
}

}  // namespace
