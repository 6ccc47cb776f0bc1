#include "standin/agent_file.h"

#include <gtest/gtest.h>

#include <optional>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;

namespace {

class AgentFile : public testing::Test {
 protected:
  fs::path folder() const { return place_.home() / "Library/Application Support/Quillmark"; }
  fs::path file() const { return folder() / "agent.json"; }
  auto publish(std::uint16_t port = 1234) {
    return standin::AgentFile::publish(place_.home(), port, "secret");
  }

  TemporaryHome place_;
};

TEST_F(AgentFile, TellsVersionPortAndToken) {
  const auto published = publish();
  ASSERT_TRUE(published);
  EXPECT_EQ(published->path(), file());
  EXPECT_EQ(nlohmann::json::parse(contentOf(file())),
            (nlohmann::json{{"version", 1}, {"port", 1234}, {"token", "secret"}}));
}

TEST_F(AgentFile, IsForItsOwnerOnly) {
  const auto published = publish();
  EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(AgentFile, LeavesNothingElseInItsFolder) {
  const auto published = publish();
  EXPECT_EQ(std::distance(fs::directory_iterator(folder()), fs::directory_iterator()), 1);
}

TEST_F(AgentFile, ReplacesAFileLeftBehind) {
  putFile(file(), "left behind, and longer than what is to be written in its place: " +
                      std::string(1000, 'x'));
  const auto published = publish();
  EXPECT_EQ(nlohmann::json::parse(contentOf(file())).at("port"), 1234);
  EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(AgentFile, IsRemovedAtTheEnd) {
  {
    const auto published = publish();
  }
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(AgentFile, OfAnotherApplicationIsLeftAlone) {
  std::optional other(publish(1));
  const auto later = publish(2);
  other.reset();
  EXPECT_EQ(nlohmann::json::parse(contentOf(file())).at("port"), 2);
}

TEST_F(AgentFile, WhereThereCanBeNoFolderIsRefused) {
  putFile(place_.home() / "Library", "a file in the way");
  const auto published = publish();
  ASSERT_FALSE(published);
  EXPECT_NE(published.error().sentence.find("could not be written"), std::string::npos);
}

}  // namespace
