// The built program: what it prints and publishes, and how it ends.
#include <gtest/gtest.h>

#include <csignal>

#include "tests/standin/loopback_client.h"
#include "tests/standin/served_folders.h"
#include "tests/standin/standin_process.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

class StandinProgram : public testing::Test {
 protected:
  StandinProgram() { fs::create_directory(drive()); }

  std::string home() const { return place_.home(); }
  fs::path drive() const { return place_.folder() / "Docs"; }
  fs::path agentFile() const {
    return place_.home() / "Library/Application Support/Quillmark/agent.json";
  }
  json published() const { return json::parse(contentOf(agentFile())); }
  // The arguments are JSON text.
  json call(const std::string& tool, const std::string& arguments) {
    const json endpoint = published();
    LoopbackClient client(endpoint.at("port").get<std::uint16_t>());
    client.send(R"({"version":1,"token":)" + endpoint.at("token").dump() + R"(,"tool":")" + tool +
                R"(","arguments":)" + arguments + "}");
    return json::parse(client.receiveReply());
  }

 private:
  TemporaryHome place_;
};

TEST_F(StandinProgram, PrintsOneLineAsSoonAsItAnswers) {
  StandinProcess program({home(), drive()});
  EXPECT_EQ(program.readLine(),
            "Serving \"Docs\" for reading and writing. Waiting for calls; Ctrl-C ends this.");
  EXPECT_EQ(call("write_file", R"({"drive":"Docs","path":"a","content":"b"})").at("ok"), true);
  EXPECT_EQ(contentOf(drive() / "a"), "b");
}

TEST_F(StandinProgram, ReadOnlyWritesNothing) {
  StandinProcess program({"--read-only", home(), drive()});
  EXPECT_EQ(program.readLine(),
            "Serving \"Docs\" for reading only. Waiting for calls; Ctrl-C ends this.");
  const json reply = call("write_file", R"({"drive":"Docs","path":"a","content":"b"})");
  EXPECT_EQ(reply.at("ok"), false);
  EXPECT_TRUE(fs::is_empty(drive()));
}

TEST_F(StandinProgram, PrintsEachCallAndHowItEndedButNotTheProbeBeforeIt) {
  StandinProcess program({home(), drive()});
  program.readLine();
  call("drive_status", "{}");
  call("search_drives", R"({"query":""})");
  call("drive_status", "{}");
  call("drive_status", "{}");
  EXPECT_EQ(program.readLine(), "search_drives  query: \"\"");
  EXPECT_EQ(program.readLine(), "  answered with 48 bytes");
  EXPECT_EQ(program.readLine(), "drive_status  ");
  EXPECT_TRUE(program.readLine().starts_with("  answered with "));
  call("drive_status", "{}");
  call("read_file", R"({"drive":"Docs","path":"\u001b[2J"})");
  program.readLine();
  EXPECT_EQ(program.readLine(), "  refused: There is no file \"?[2J\" on the drive \"Docs\".");
}

TEST_F(StandinProgram, PrintsDeeplyNestedArgumentsByTheirTypeOnly) {
  StandinProcess program({home(), drive()});
  program.readLine();
  call("search_drives", R"({"query":)" + std::string(100000, '[') + std::string(100000, ']') + "}");
  EXPECT_EQ(program.readLine(), "search_drives  query: array");
}

TEST_F(StandinProgram, EndsCleanlyOnEverySignalThatAsksItTo) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    StandinProcess program({home(), drive()});
    program.readLine();
    const LoopbackClient idle(published().at("port").get<std::uint16_t>());
    EXPECT_EQ(program.stop(signal), 0) << signal;
    EXPECT_FALSE(fs::exists(agentFile())) << signal;
  }
}

TEST_F(StandinProgram, PublishesANewTokenAtEachStart) {
  std::string tokens[2];
  for (std::string& token : tokens) {
    StandinProcess program({home(), drive()});
    program.readLine();
    token = published().at("token");
    program.stop(SIGTERM);
  }
  EXPECT_GE(tokens[0].size(), 20);
  EXPECT_NE(tokens[0], tokens[1]);
}

TEST_F(StandinProgram, RefusesAnUnknownOptionAndMissingArgumentsWithStatusTwo) {
  EXPECT_EQ(StandinProcess({}).waitForEnd(), 2);
  EXPECT_EQ(StandinProcess({home()}).waitForEnd(), 2);
  EXPECT_EQ(StandinProcess({"--read-only", home()}).waitForEnd(), 2);
  EXPECT_EQ(StandinProcess({"--fast", home(), drive()}).waitForEnd(), 2);
}

TEST_F(StandinProgram, RefusesAMissingFolderWithStatusOne) {
  EXPECT_EQ(StandinProcess({home(), drive() / "none"}).waitForEnd(), 1);
  EXPECT_FALSE(fs::exists(agentFile()));
}

}  // namespace
