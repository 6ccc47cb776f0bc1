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

// The child process that starts the application.
class Launch : public LaunchConversation {
 protected:
  Launch() {
    setup.environment = {"QUILLMARK_TEST_MARK=a value with blanks", "EMPTY="};
    setup.directory = home.folder();
  }

  // The record of a launch that a call has needed.
  json launched() {
    launches.script({.publish = EndpointFile::text(app.port())});
    EXPECT_EQ(callTool("x").size(), 1U);
    return launches.record(0);
  }

  std::string serversFile(const std::string& name) {
    return fileIdentity("/proc/" + std::to_string(server->pid()) + "/" + name);
  }

  std::vector<std::string> serversEnvironment() {
    std::ifstream file("/proc/" + std::to_string(server->pid()) + "/environ", std::ios::binary);
    std::vector<std::string> entries;
    for (std::string entry; std::getline(file, entry, '\0');) entries.push_back(entry);
    return entries;
  }

  // The signals in a mask, without 32 to 34, which C libraries keep to themselves: they let no
  // program change these, and posix_spawn may leave them ignored.
  static std::uint64_t signalsIn(const std::string& mask) {
    return std::stoull(mask, nullptr, 16) & ~(std::uint64_t{7} << 31);
  }

  // The state letter of a process, or nothing when it is gone.
  static std::string stateOf(int pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::size_t end = text.rfind(") ");
    return end == std::string::npos ? "" : text.substr(end + 2, 1);
  }
};

TEST_F(Launch, CommandHasExactlyItsThreeArguments) {
  EXPECT_EQ(launched().at("arguments"), openCommand);
}

TEST_F(Launch, EnvironmentIsInherited) {
  auto heard = launched().at("environment").get<std::vector<std::string>>();
  auto own = serversEnvironment();
  std::ranges::sort(heard);
  std::ranges::sort(own);
  EXPECT_EQ(heard, own);
  EXPECT_TRUE(std::ranges::count(heard, "QUILLMARK_TEST_MARK=a value with blanks") == 1);
}

TEST_F(Launch, WorkingDirectoryIsInherited) {
  EXPECT_EQ(launched().at("directory"), fs::canonical(home.folder()).string());
}

TEST_F(Launch, StandardStreamsAreInheritedAndNothingElse) {
  EXPECT_EQ(
      launched().at("descriptors"),
      json({{"0", serversFile("fd/0")}, {"1", serversFile("fd/1")}, {"2", serversFile("fd/2")}}));
}

TEST_F(Launch, ConnectionsAreNotInherited) {
  ScriptedApp silent;
  silent.otherwise(silence());
  endpointFile.publish(silent.port());
  EXPECT_EQ(launched().at("descriptors").size(), 3U);
  EXPECT_FALSE(silent.record(0).closedByServer.has_value()) << "one was open at the launch";
}

TEST_F(Launch, SignalsHaveTheirDefaults) {
  const json record = launched();
  EXPECT_EQ(signalsIn(record.at("blockedSignals")), 0U);
  EXPECT_EQ(signalsIn(record.at("ignoredSignals")), 0U);
}

TEST_F(Launch, LeavesNoZombie) {
  const int child = launched().at("pid");
  const auto deadline = Clock::now() + 5s;
  while (!stateOf(child).empty() && Clock::now() < deadline) std::this_thread::sleep_for(10ms);
  EXPECT_EQ(stateOf(child), "");
  EXPECT_TRUE(staysSilent()) << "the server is alive beside it";
}

TEST_F(Launch, ChildThatStaysIsNotWaitedFor) {
  launches.script({.publish = EndpointFile::text(app.port()), .stay = 60s});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_LT(Seconds(Clock::now() - start), Seconds(4));
  EXPECT_NE(stateOf(launches.record(0).at("pid")), "");
  sayGoodbye();
  EXPECT_NE(stateOf(launches.record(0).at("pid")), "") << "it is left running";
}

TEST_F(Launch, IsMadeAgainForEachCallThatNeedsIt) {
  launches.script({.publish = EndpointFile::text(app.port())});
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_EQ(launches.count(), 1U);
  endpointFile.remove();
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_EQ(launches.count(), 2U);
  EXPECT_EQ(launches.record(1).at("arguments"), openCommand);
}

TEST_F(Launch, TokenIsNotToldToTheChild) {
  endpointFile.publish(app.port());
  app.script({readAndHangUp()});
  EXPECT_EQ(launched().dump().find(usualToken), std::string::npos);
}

class LaunchFromOddHost : public Launch {
 protected:
  LaunchFromOddHost() {
    setup.signalsBlockedAndIgnored = true;
    setup.strayDescriptor = true;
  }
};

TEST_F(LaunchFromOddHost, SignalsStillHaveTheirDefaults) {
  const json record = launched();
  EXPECT_EQ(signalsIn(record.at("blockedSignals")), 0U);
  EXPECT_EQ(signalsIn(record.at("ignoredSignals")), 0U);
}

TEST_F(LaunchFromOddHost, DescriptorThatTheHostLeftOpenIsNotInherited) {
  ASSERT_EQ(serversFile("fd/3"), serversFile("fd/2")) << "the host did leave one open";
  EXPECT_EQ(launched().at("descriptors").size(), 3U);
}

}  // namespace
