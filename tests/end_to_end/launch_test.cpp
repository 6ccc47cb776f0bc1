#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

#include "tests/support/conversation.h"
#include "tests/support/file_identity.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

const json openCommand = {"/usr/bin/open", "-g", "-b", "app.quillmark"};

// The child process that launches the application.
class Launch : public LaunchConversation {
 protected:
  Launch() {
    setup.environment = {"QUILLMARK_TEST_MARK=a value with spaces", "EMPTY="};
    setup.directory = home.folder();
  }

  // Makes a call that launches the application, and returns the record of the launch.
  json launch() {
    launches.script({.publish = EndpointFile::text(app.port())});
    EXPECT_EQ(callTool("x").size(), 1U);
    return launches.record(0);
  }

  std::string fileOfServer(const std::string& name) {
    return fileIdentity("/proc/" + std::to_string(server->pid()) + "/" + name);
  }

  std::vector<std::string> environmentOfServer() {
    std::ifstream file("/proc/" + std::to_string(server->pid()) + "/environ", std::ios::binary);
    std::vector<std::string> entries;
    for (std::string entry; std::getline(file, entry, '\0');) entries.push_back(entry);
    return entries;
  }

  // The signals in a mask, without 32 to 34: C libraries use these themselves, no program can
  // change them, and posix_spawn may leave them ignored.
  static std::uint64_t signalsIn(const std::string& mask) {
    return std::stoull(mask, nullptr, 16) & ~(std::uint64_t{7} << 31);
  }

  // The letter for the state of a process; empty if there is no such process.
  static std::string stateOf(int pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::size_t end = text.rfind(") ");
    return end == std::string::npos ? "" : text.substr(end + 2, 1);
  }
};

TEST_F(Launch, CommandHasThreeArguments) {
  EXPECT_EQ(launch().at("arguments"), openCommand);
}

TEST_F(Launch, EnvironmentIsInherited) {
  auto ofChild = launch().at("environment").get<std::vector<std::string>>();
  auto ofServer = environmentOfServer();
  std::ranges::sort(ofChild);
  std::ranges::sort(ofServer);
  EXPECT_EQ(ofChild, ofServer);
  EXPECT_EQ(std::ranges::count(ofChild, "QUILLMARK_TEST_MARK=a value with spaces"), 1);
}

TEST_F(Launch, WorkingDirectoryIsInherited) {
  EXPECT_EQ(launch().at("directory"), fs::canonical(home.folder()).string());
}

TEST_F(Launch, OnlyStandardStreamsAreInherited) {
  EXPECT_EQ(launch().at("descriptors"), json({{"0", fileOfServer("fd/0")},
                                              {"1", fileOfServer("fd/1")},
                                              {"2", fileOfServer("fd/2")}}));
}

TEST_F(Launch, ConnectionsAreNotInherited) {
  ScriptedApp silent;
  silent.setDefault(silence());
  endpointFile.publish(silent.port());
  EXPECT_EQ(launch().at("descriptors").size(), 3U);
  EXPECT_FALSE(silent.record(0).closedByServer.has_value()) << "it was open at the launch";
}

TEST_F(Launch, SignalsAreNeitherBlockedNorIgnored) {
  const json record = launch();
  EXPECT_EQ(signalsIn(record.at("blockedSignals")), 0U);
  EXPECT_EQ(signalsIn(record.at("ignoredSignals")), 0U);
}

TEST_F(Launch, LeavesNoZombie) {
  const int child = launch().at("pid");
  const auto deadline = Clock::now() + Launches::generous;
  while (!stateOf(child).empty() && Clock::now() < deadline) std::this_thread::sleep_for(10ms);
  EXPECT_EQ(stateOf(child), "");
  EXPECT_TRUE(hasNoFurtherReply()) << "the server still runs";
}

TEST_F(Launch, ChildThatKeepsRunningIsNotWaitedFor) {
  launches.script({.publish = EndpointFile::text(app.port()), .stay = 1h});
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_NE(stateOf(launches.record(0).at("pid")), "");
  expectCleanExit();
  EXPECT_NE(stateOf(launches.record(0).at("pid")), "") << "it still runs";
}

TEST_F(Launch, IsRepeatedForEachCallThatNeedsIt) {
  launches.script({.publish = EndpointFile::text(app.port())});
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_EQ(launches.count(), 1U);
  endpointFile.remove();
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_EQ(launches.count(), 2U);
  EXPECT_EQ(launches.record(1).at("arguments"), openCommand);
}

TEST_F(Launch, ChildDoesNotGetTheToken) {
  endpointFile.publish(app.port());
  app.script({readAndClose()});
  EXPECT_EQ(launch().dump().find(usualToken), std::string::npos);
}

class LaunchFromUnusualHost : public Launch {
 protected:
  LaunchFromUnusualHost() {
    setup.signalsBlockedAndIgnored = true;
    setup.strayDescriptor = true;
  }
};

TEST_F(LaunchFromUnusualHost, SignalsAreNeitherBlockedNorIgnored) {
  const json record = launch();
  EXPECT_EQ(signalsIn(record.at("blockedSignals")), 0U);
  EXPECT_EQ(signalsIn(record.at("ignoredSignals")), 0U);
}

TEST_F(LaunchFromUnusualHost, DescriptorOfTheHostIsNotInherited) {
  ASSERT_EQ(fileOfServer("fd/3"), fileOfServer("fd/2")) << "the server did inherit one";
  EXPECT_EQ(launch().at("descriptors").size(), 3U);
}

}  // namespace
