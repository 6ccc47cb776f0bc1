// The built program from outside: what it prints and publishes, and how it stops.
#include <gtest/gtest.h>

#include <csignal>

#include "tests/standin/loopback_client.h"
#include "tests/standin/served_folders.h"
#include "tests/standin/standin_process.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

class Program : public testing::Test {
 protected:
  Program() { fs::create_directory(drive()); }

  fs::path drive() const { return place_.folder() / "Docs"; }
  fs::path agentFile() const {
    return place_.home() / "Library/Application Support/Quillmark/agent.json";
  }
  StandinProcess start(const std::vector<std::string>& words) { return {place_.home(), words}; }
  json call(const std::string& tool, const json& arguments) {
    const json published = json::parse(contentOf(agentFile()));
    LoopbackClient client(published.at("port").get<std::uint16_t>());
    const json request{{"version", published.at("version")},
                       {"token", published.at("token")},
                       {"tool", tool},
                       {"arguments", arguments}};
    client.send(request.dump());
    return json::parse(client.receiveReply());
  }

  TemporaryHome place_;
};

TEST_F(Program, PrintsOneLineWhenItIsReadyAndAnswers) {
  StandinProcess program = start({drive()});
  const std::string line = program.readLine();
  EXPECT_TRUE(line.starts_with("Serving \"Docs\" on 127.0.0.1:")) << line;
  EXPECT_EQ(call("drive_status", json::object()).at("ok"), true);
  EXPECT_EQ(call("write_file", {{"drive", "Docs"}, {"path", "a"}, {"content", "b"}}).at("ok"),
            true);
  EXPECT_EQ(contentOf(drive() / "a"), "b");
}

TEST_F(Program, ReadOnlyWritesNothing) {
  StandinProcess program = start({"--read-only", drive()});
  program.readLine();
  const json reply = call("write_file", {{"drive", "Docs"}, {"path", "a"}, {"content", "b"}});
  EXPECT_EQ(reply.at("ok"), false);
  EXPECT_TRUE(fs::is_empty(drive()));
}

TEST_F(Program, EverySignalThatAsksItToStopStopsItCleanly) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    StandinProcess program = start({drive()});
    program.readLine();
    const LoopbackClient idle(json::parse(contentOf(agentFile())).at("port").get<std::uint16_t>());
    EXPECT_EQ(program.stop(signal), 0) << signal;
    EXPECT_FALSE(fs::exists(agentFile())) << signal;
  }
}

TEST_F(Program, EachStartHasANewToken) {
  std::string tokens[2];
  for (std::string& token : tokens) {
    StandinProcess program = start({drive()});
    program.readLine();
    token = json::parse(contentOf(agentFile())).at("token");
    program.stop(SIGTERM);
  }
  EXPECT_EQ(tokens[0].size(), 32);
  EXPECT_NE(tokens[0], tokens[1]);
}

TEST_F(Program, WithoutFoldersOrWithAnUnknownOptionItEndsWithStatusTwo) {
  EXPECT_EQ(start({}).waitForEnd(), 2);
  EXPECT_EQ(start({"--read-only"}).waitForEnd(), 2);
  EXPECT_EQ(start({"--fast", drive()}).waitForEnd(), 2);
}

TEST_F(Program, FolderThatIsNotThereEndsItWithStatusOne) {
  EXPECT_EQ(start({place_.folder() / "none"}).waitForEnd(), 1);
  EXPECT_FALSE(fs::exists(agentFile()));
}

}  // namespace
