#include "standin/agent_file.h"

#include <gtest/gtest.h>

#include <optional>
#include <system_error>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;

namespace {

class AgentFile : public testing::Test {
 protected:
  fs::path folder() const { return place_.home() / "Library/Application Support/Quillmark"; }
  fs::path file() const { return folder() / "agent.json"; }
  void publish(std::uint16_t port = 1234) { published_.emplace(place_.home(), port, "secret"); }

  TemporaryHome place_;
  std::optional<standin::AgentFile> published_;
};

TEST_F(AgentFile, ContainsVersionPortAndToken) {
  publish();
  EXPECT_EQ(nlohmann::json::parse(contentOf(file())),
            (nlohmann::json{{"version", 1}, {"port", 1234}, {"token", "secret"}}));
}

TEST_F(AgentFile, IsTheOnlyFileInItsFolder) {
  publish();
  EXPECT_EQ(std::distance(fs::directory_iterator(folder()), fs::directory_iterator()), 1);
}

TEST_F(AgentFile, ReplacesALongerFileAndCanBeReadByItsOwnerOnly) {
  putFile(file(), std::string(1000, 'x'));
  publish();
  EXPECT_EQ(nlohmann::json::parse(contentOf(file())).at("port"), 1234);
  EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(AgentFile, IsRemovedWithItsObject) {
  publish();
  published_.reset();
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(AgentFile, StaysIfAnotherApplicationHasReplacedIt) {
  publish(1);
  const standin::AgentFile other(place_.home(), 2, "secret");
  published_.reset();
  EXPECT_EQ(nlohmann::json::parse(contentOf(file())).at("port"), 2);
}

TEST_F(AgentFile, ThrowsIfItsFolderCannotBeMade) {
  putFile(place_.home() / "Library", "a file in the way");
  EXPECT_THROW(publish(), std::system_error);
}

}  // namespace
