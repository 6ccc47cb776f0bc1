#include "standin/drives.h"

#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;

namespace {

class Drives : public testing::Test {
 protected:
  fs::path folder(const std::string& path) {
    fs::create_directories(place_.folder() / path);
    return place_.folder() / path;
  }

  TemporaryHome place_;
};

TEST_F(Drives, AreNamedAfterTheirFolders) {
  const auto drives = standin::Drives::open({folder("one/Docs"), folder("Photos/")}, true);
  ASSERT_TRUE(drives);
  EXPECT_EQ((*drives)->names(), R"("Docs", "Photos")");
}

TEST_F(Drives, OfTheSameNameAreNumbered) {
  const auto drives = standin::Drives::open(
      {folder("a/Docs"), folder("b/Docs 2"), folder("c/Docs"), folder("d/Docs")}, true);
  ASSERT_TRUE(drives);
  EXPECT_EQ((*drives)->names(), R"("Docs", "Docs 2", "Docs 3", "Docs 4")");
}

TEST_F(Drives, MissingFolderIsRefused) {
  const auto drives = standin::Drives::open({place_.folder() / "nowhere"}, true);
  ASSERT_FALSE(drives);
  EXPECT_NE(drives.error().sentence.find("could not be opened"), std::string::npos);
}

TEST_F(Drives, FileIsRefused) {
  putFile(place_.folder() / "file", "");
  const auto drives = standin::Drives::open({place_.folder() / "file"}, true);
  ASSERT_FALSE(drives);
  EXPECT_NE(drives.error().sentence.find("is no folder"), std::string::npos);
}

TEST_F(Drives, FolderWithinAnotherIsRefusedInEitherOrder) {
  const fs::path outer = folder("outer");
  const fs::path inner = folder("outer/inner");
  EXPECT_FALSE(standin::Drives::open({outer, inner}, true));
  EXPECT_FALSE(standin::Drives::open({inner, outer}, true));
  EXPECT_FALSE(standin::Drives::open({outer, outer}, true));
  EXPECT_TRUE(standin::Drives::open({outer, folder("outer-two")}, true));
}

}  // namespace
