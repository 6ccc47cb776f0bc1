// What a path may reach: the drive's own files and nothing else.
#include "standin/drive.h"

#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;

namespace {

class Drive : public ServedFolders, public testing::Test {
 protected:
  std::string refusalToRead(const std::string& path) {
    return refusal("read_file", {{"drive", "Alpha"}, {"path", path}});
  }
  std::string refusalToWrite(const std::string& path) {
    return refusal("write_file", {{"drive", "Alpha"}, {"path", path}, {"content", "new"}});
  }
  std::string textAt(const std::string& path) {
    return result("read_file", {{"drive", "Alpha"}, {"path", path}}).at("content");
  }
};

TEST_F(Drive, PathsMayHaveDotsAndSpareSlashes) {
  putFile(alpha("a/b.txt"), "text");
  EXPECT_EQ(textAt("./a//b.txt"), "text");
  EXPECT_EQ(result("get_file_info", {{"drive", "Alpha"}, {"path", "./a//b.txt"}}).at("path"),
            "a/b.txt");
}

TEST_F(Drive, DotDotIsRefusedWhereverItStands) {
  putFile(outside("secret.txt"), "secret");
  putFile(alpha("a/b.txt"), "text");
  for (const char* path : {"..", "../secret.txt", "a/../../secret.txt", "a/../a/b.txt"}) {
    EXPECT_NE(refusalToRead(path).find("must not contain \"..\""), std::string::npos) << path;
  }
}

TEST_F(Drive, NameThatMerelyBeginsWithDotsIsFine) {
  putFile(alpha("..notes"), "text");
  EXPECT_EQ(textAt("..notes"), "text");
}

TEST_F(Drive, AbsolutePathIsRefused) {
  putFile(alpha("a.txt"), "text");
  EXPECT_NE(refusalToRead(alpha("a.txt")).find("is absolute"), std::string::npos);
}

TEST_F(Drive, NullCharacterInAPathIsRefused) {
  putFile(alpha("a.txt"), "text");
  EXPECT_EQ(refusalToRead(std::string("a.txt\0.png", 10)),
            "A path can't contain a null character.");
}

TEST_F(Drive, SymlinkOutOfTheDriveIsRefused) {
  putFile(outside("secret.txt"), "secret");
  fs::create_symlink(outside("secret.txt"), alpha("link.txt"));
  EXPECT_NE(refusalToRead("link.txt").find("leads out of the drive"), std::string::npos);
  EXPECT_NE(refusalToWrite("link.txt").find("leads out of the drive"), std::string::npos);
  EXPECT_EQ(contentOf(outside("secret.txt")), "secret");
}

TEST_F(Drive, SymlinkedFolderOutOfTheDriveIsRefused) {
  putFile(outside("elsewhere/secret.txt"), "secret");
  fs::create_directory_symlink(outside("elsewhere"), alpha("folder"));
  EXPECT_NE(refusalToRead("folder/secret.txt").find("leads out"), std::string::npos);
  EXPECT_NE(refusalToWrite("folder/new.txt").find("leads out"), std::string::npos);
  EXPECT_NE(refusal("list_directory", {{"drive", "Alpha"}, {"path", "folder"}}).find("leads out"),
            std::string::npos);
  EXPECT_FALSE(fs::exists(outside("elsewhere/new.txt")));
}

TEST_F(Drive, SymlinkToTheOtherDriveIsRefused) {
  putFile(beta("b.txt"), "text");
  fs::create_symlink(beta("b.txt"), alpha("link.txt"));
  EXPECT_NE(refusalToRead("link.txt").find("leads out"), std::string::npos);
}

TEST_F(Drive, SymlinkThatLeadsNowhereIsRefused) {
  fs::create_symlink(outside("not-there.txt"), alpha("link.txt"));
  EXPECT_NE(refusalToWrite("link.txt").find("leads nowhere"), std::string::npos);
  EXPECT_FALSE(fs::exists(outside("not-there.txt")));
}

TEST_F(Drive, SymlinkLoopIsRefused) {
  fs::create_symlink(alpha("loop"), alpha("loop"));
  EXPECT_NE(refusalToRead("loop/a.txt").find("leads nowhere"), std::string::npos);
}

TEST_F(Drive, FolderWhoseNameContinuesTheDrivesIsOutside) {
  putFile(outside("Alpha-private/secret.txt"), "secret");
  fs::create_directory_symlink(outside("Alpha-private"), alpha("folder"));
  EXPECT_NE(refusalToRead("folder/secret.txt").find("leads out"), std::string::npos);
}

TEST_F(Drive, SymlinkWithinTheDriveIsFollowed) {
  putFile(alpha("a/real.txt"), "text");
  fs::create_symlink("a/real.txt", alpha("link.txt"));
  EXPECT_EQ(textAt("link.txt"), "text");
}

TEST_F(Drive, WritingThroughASymlinkWithinTheDriveKeepsTheLink) {
  putFile(alpha("a/real.txt"), "old");
  fs::create_symlink("a/real.txt", alpha("link.txt"));
  result("write_file", {{"drive", "Alpha"}, {"path", "link.txt"}, {"content", "new"}});
  EXPECT_TRUE(fs::is_symlink(alpha("link.txt")));
  EXPECT_EQ(contentOf(alpha("a/real.txt")), "new");
}

TEST_F(Drive, UndoFolderCantBeReachedInAnyLetterCase) {
  putFile(alpha(".quillmark-undo/kept.txt"), "kept");
  EXPECT_NE(refusalToRead(".quillmark-undo/kept.txt").find("belongs to Quillmark"),
            std::string::npos);
  EXPECT_NE(refusalToWrite(".Quillmark-UNDO/new.txt").find("belongs to Quillmark"),
            std::string::npos);
}

TEST_F(Drive, UndoFolderCantBeReachedThroughASymlink) {
  putFile(alpha(".quillmark-undo/kept.txt"), "kept");
  fs::create_directory_symlink(".quillmark-undo", alpha("undo"));
  EXPECT_NE(refusalToRead("undo/kept.txt").find("leads out"), std::string::npos);
}

TEST_F(Drive, NameTooLongIsRefusedWithTheReason) {
  EXPECT_NE(refusalToRead(std::string(5000, 'n')).find("could not be looked up"),
            std::string::npos);
}

}  // namespace
