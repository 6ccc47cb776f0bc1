#ifdef __linux__

#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

// What other processes can see of the server while it waits for a reply.
class Secrecy : public Conversation {
 protected:
  void SetUp() override {
    Conversation::SetUp();
    app.script({succeed(), replyWhenReleased(R"({"ok":true})")});
    sendLine(toolCall(R"({"name":"x"})"));
    ASSERT_TRUE(app.waitUntilReceived(1, 1));
  }

  fs::path ofProcess(std::string_view name) const {
    return fs::path("/proc") / std::to_string(server->pid()) / name;
  }

  std::string contentOf(std::string_view name) const {
    std::ifstream file(ofProcess(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // The inodes of the sockets that the server has open.
  std::vector<std::string> openSockets() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(ofProcess("fd"))) {
      const std::string target = fs::read_symlink(entry.path()).string();
      if (target.starts_with("socket:[")) found.push_back(target.substr(8, target.size() - 9));
    }
    return found;
  }

  // The local and remote address of a TCP socket over IPv4, each "ADDRESS:PORT" in hexadecimal
  // digits; both empty if there is no such socket.
  std::pair<std::string, std::string> addressesOf(const std::string& socket) const {
    std::istringstream table(contentOf("net/tcp"));
    for (std::string line; std::getline(table, line);) {
      std::istringstream fields(line);
      const std::vector<std::string> columns{std::istream_iterator<std::string>(fields), {}};
      if (columns.size() > 9 && columns[9] == socket) return {columns[1], columns[2]};
    }
    return {};
  }
};

TEST_F(Secrecy, OnlySocketIsConnectedToTheLoopbackAddress) {
  constexpr std::string_view loopback = "0100007F:";
  const std::vector<std::string> sockets = openSockets();
  ASSERT_EQ(sockets.size(), 1U) << "the probe's is closed, and none listens";
  const auto [local, remote] = addressesOf(sockets[0]);
  EXPECT_TRUE(local.starts_with(loopback)) << local;
  ASSERT_TRUE(remote.starts_with(loopback)) << remote;
  EXPECT_EQ(std::stoi(remote.substr(loopback.size()), nullptr, 16), app.port());
}

TEST_F(Secrecy, TokenIsInNeitherArgumentsNorEnvironment) {
  ASSERT_TRUE(contains(app.record(1).received, usualToken));
  const std::string arguments = contentOf("cmdline");
  const std::string environment = contentOf("environ");
  ASSERT_FALSE(arguments.empty() || environment.empty());
  EXPECT_FALSE(contains(arguments, usualToken));
  EXPECT_FALSE(contains(environment, usualToken));
}

TEST_F(Secrecy, NoFileIsOpenDuringACall) {
  for (const auto& entry : fs::directory_iterator(ofProcess("fd"))) {
    const int number = std::stoi(entry.path().filename().string());
    const std::string target = fs::read_symlink(entry.path()).string();
    EXPECT_TRUE(number <= 2 || !target.starts_with('/')) << number << " is " << target;
  }
}

TEST_F(Secrecy, TokenIsInNoErrorMessage) {
  app.release();
  std::string replies = receiveLine();
  const std::vector<std::vector<ScriptedApp::Script>> failures{
      {succeed(), readAndClose()},
      {succeed(), resetUnread()},
      {succeed(), reply("garbage")},
      {succeed(), reply("{}")},
      {succeed(), refuse("The token is wrong.")},
  };
  for (const auto& scripts : failures) {
    app.script(scripts);
    sendLine(toolCall(R"({"name":"x"})"));
    replies += receiveLine();
  }
  EXPECT_FALSE(contains(replies, usualToken));
}

}  // namespace

#endif
