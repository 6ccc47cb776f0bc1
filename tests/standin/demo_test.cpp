// The demo as a person sees it.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "tests/standin/shell.h"
#include "tests/support/temporary_home.h"

namespace {

class Demo : public testing::Test {
 protected:
  std::string command(const std::string& server = QUILLMARK_MCP_BINARY) const {
    return quoted(QUILLMARK_DEMO_BINARY) + " " + quoted(server) + " " + quoted(place_.folder());
  }

 private:
  TemporaryHome place_{"unused"};
};

std::size_t widestLine(const std::string& text) {
  std::size_t widest = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) widest = std::max(widest, line.size());
  return widest;
}

std::size_t lineCount(const std::string& text) {
  return static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

TEST_F(Demo, LinesFitTheTerminal) {
  for (const int columns : {60, 200}) {
    const CommandResult result = runOnTerminal("NO_COLOR=1 " + command(), columns);
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_LE(widestLine(result.output), columns);
    EXPECT_GE(widestLine(result.output), std::min(columns, 90));
  }
}

TEST_F(Demo, LinesHaveAtMostEightyCharactersInAPipe) {
  const CommandResult result = runInShell(command());
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_LE(widestLine(result.output), 80);
}

TEST_F(Demo, UsesColoursOnATerminalUnlessTheyAreTurnedOff) {
  EXPECT_TRUE(runOnTerminal("TERM=xterm NO_COLOR= " + command(), 80).output.contains('\033'));
  EXPECT_FALSE(runOnTerminal("TERM=xterm NO_COLOR=1 " + command(), 80).output.contains('\033'));
  EXPECT_FALSE(runOnTerminal("TERM=dumb NO_COLOR= " + command(), 80).output.contains('\033'));
  EXPECT_FALSE(runInShell("TERM=xterm NO_COLOR= " + command()).output.contains('\033'));
}

TEST_F(Demo, ShowsMessagesInTheOrderInWhichTheyAreSent) {
  const std::string text = runInShell(command()).output;
  std::size_t position = text.find("from the host to Quillmark and back");
  for (const char* expected :
       {"host -> server\n", R"("method":"tools/call")", "server -> Quillmark\n",
        R"("tool":"drive_status")", "Quillmark -> server\n", R"({"ok":true)",
        "server -> Quillmark\n", R"("tool":"search_drives")", "Quillmark -> server\n",
        R"({"ok":true)", "<- more: false", "path: Plans/Harbour plan.md", "What to try next"}) {
    position = text.find(expected, position);
    ASSERT_NE(position, std::string::npos) << expected << "\nin\n" << text;
  }
}

TEST_F(Demo, FailsWithOneLineIfItsOutputCannotBeWritten) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no /dev/full";
  const CommandResult result = runInShell(command() + " >/dev/full");
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.output.contains("can't write the output: No space left")) << result.output;
  EXPECT_EQ(lineCount(result.output), 1);
}

TEST_F(Demo, FailsWithOneLineIfTheServerDoesNotAnswer) {
  for (const char* server : {"/usr/bin/true", "/bin/cat", "/nonexistent"}) {
    const CommandResult result = runInShell(command(server) + " >/dev/null");
    EXPECT_EQ(result.status, 1) << server;
    EXPECT_EQ(lineCount(result.output), 1) << result.output;
  }
}

class DemoScript : public testing::Test {
 protected:
  static void expectRefusal(const std::string& arguments, const std::string& reason) {
    const CommandResult result = runInShell(quoted(QUILLMARK_DEMO_SCRIPT) + " " + arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.output.starts_with("scripts/demo: " + reason + "\n")) << result.output;
  }
};

TEST_F(DemoScript, RefusesWrongFoldersBeforeAnythingElse) {
  expectRefusal("/ /nonexistent", "not a folder: /nonexistent");
  expectRefusal("/dev/null", "not a folder: /dev/null");
  expectRefusal("/usr /", "one of these folders contains the other: /usr, /");
}

TEST_F(DemoScript, RefusesUnknownOptionsAndMissingFolders) {
  expectRefusal("--fast /", "unknown option: --fast");
  expectRefusal("--writable", "--writable needs a folder");
}

}  // namespace
