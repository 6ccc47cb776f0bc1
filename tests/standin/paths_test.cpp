// A path reaches the files of its drive and nothing else.
#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;

namespace {

class Paths : public ServedFolders, public testing::Test {
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

TEST_F(Paths, MayContainDotsAndDoubleSlashes) {
  putFile(alpha("a/b.txt"), "text");
  EXPECT_EQ(textAt("./a//b.txt"), "text");
  EXPECT_EQ(result("get_file_info", {{"drive", "Alpha"}, {"path", "./a//b.txt"}}).at("path"),
            "a/b.txt");
}

TEST_F(Paths, OutOfTheDriveAreRefused) {
  putFile(outside("secret.txt"), "secret");
  putFile(alpha("a/b.txt"), "text");
  for (const char* path : {"..", "../secret.txt", "a/../../secret.txt", "none/../../secret.txt",
                           "../Alpha-private/secret.txt"}) {
    EXPECT_NE(refusalToRead(path).find("leads out of the drive"), std::string::npos) << path;
    EXPECT_NE(refusalToWrite(path).find("leads out of the drive"), std::string::npos) << path;
  }
}

TEST_F(Paths, MayGoUpWithinTheDrive) {
  putFile(alpha("a/b.txt"), "text");
  EXPECT_EQ(textAt("a/../a/b.txt"), "text");
}

TEST_F(Paths, NameMayBeginWithTwoDots) {
  putFile(alpha("..notes"), "text");
  EXPECT_EQ(textAt("..notes"), "text");
}

TEST_F(Paths, AbsolutePathIsRefused) {
  putFile(alpha("a.txt"), "text");
  EXPECT_NE(refusalToRead(alpha("a.txt")).find("is absolute"), std::string::npos);
}

TEST_F(Paths, NullCharacterIsRefused) {
  putFile(alpha("a.txt"), "text");
  EXPECT_EQ(refusalToRead(std::string("a.txt\0.png", 10)),
            "A path can't contain a null character.");
}

TEST_F(Paths, PathCopiedFromJsonTextIsRefusedWithTheRightPath) {
  putFile(alpha("a/b/c.txt"), "text");
  const std::string sentence =
      R"(The path "a\/b\/c.txt" is written as in JSON text; write "a/b/c.txt" instead.)";
  EXPECT_EQ(refusalToRead(R"(a\/b\/c.txt)"), sentence);
  EXPECT_EQ(refusalToWrite(R"(a\/b\/c.txt)"), sentence);
}

TEST_F(Paths, NameMayContainABackslash) {
  putFile(alpha(R"(a\b.txt)"), "text");
  EXPECT_EQ(textAt(R"(a\b.txt)"), "text");
}

TEST_F(Paths, SymlinkOutOfTheDriveIsRefused) {
  putFile(outside("secret.txt"), "secret");
  fs::create_symlink(outside("secret.txt"), alpha("link.txt"));
  EXPECT_NE(refusalToRead("link.txt").find("leads out of the drive"), std::string::npos);
  EXPECT_NE(refusalToWrite("link.txt").find("leads out of the drive"), std::string::npos);
  EXPECT_EQ(contentOf(outside("secret.txt")), "secret");
}

TEST_F(Paths, SymlinkedFolderOutOfTheDriveIsRefused) {
  putFile(outside("elsewhere/secret.txt"), "secret");
  fs::create_directory_symlink(outside("elsewhere"), alpha("folder"));
  EXPECT_NE(refusalToRead("folder/secret.txt").find("leads out"), std::string::npos);
  EXPECT_NE(refusalToWrite("folder/new.txt").find("leads out"), std::string::npos);
  EXPECT_NE(refusal("list_directory", {{"drive", "Alpha"}, {"path", "folder"}}).find("leads out"),
            std::string::npos);
  EXPECT_FALSE(fs::exists(outside("elsewhere/new.txt")));
}

TEST_F(Paths, SymlinkToTheOtherDriveIsRefused) {
  putFile(beta("b.txt"), "text");
  fs::create_symlink(beta("b.txt"), alpha("link.txt"));
  EXPECT_NE(refusalToRead("link.txt").find("leads out"), std::string::npos);
}

TEST_F(Paths, SymlinkToNothingIsNeitherReadNorWritten) {
  fs::create_symlink(outside("not-there.txt"), alpha("link.txt"));
  EXPECT_NE(refusalToRead("link.txt").find("is not a file"), std::string::npos);
  EXPECT_NE(refusalToWrite("link.txt").find("is not a file"), std::string::npos);
  EXPECT_FALSE(fs::exists(outside("not-there.txt")));
}

TEST_F(Paths, SymlinkLoopIsRefused) {
  fs::create_symlink(alpha("loop"), alpha("loop"));
  EXPECT_NE(refusalToRead("loop/a.txt").find("could not finish this call"), std::string::npos);
}

TEST_F(Paths, FolderWhoseNameBeginsLikeTheDriveIsOutside) {
  putFile(outside("Alpha-private/secret.txt"), "secret");
  fs::create_directory_symlink(outside("Alpha-private"), alpha("folder"));
  EXPECT_NE(refusalToRead("folder/secret.txt").find("leads out"), std::string::npos);
}

TEST_F(Paths, SymlinkWithinTheDriveIsFollowed) {
  putFile(alpha("a/real.txt"), "text");
  fs::create_symlink("a/real.txt", alpha("link.txt"));
  EXPECT_EQ(textAt("link.txt"), "text");
}

TEST_F(Paths, WritingThroughASymlinkWithinTheDriveKeepsTheLink) {
  putFile(alpha("a/real.txt"), "old");
  fs::create_symlink("a/real.txt", alpha("link.txt"));
  result("write_file", {{"drive", "Alpha"}, {"path", "link.txt"}, {"content", "new"}});
  EXPECT_TRUE(fs::is_symlink(alpha("link.txt")));
  EXPECT_EQ(contentOf(alpha("a/real.txt")), "new");
}

TEST_F(Paths, UndoFolderCannotBeReachedInUpperOrLowerCase) {
  putFile(alpha(".quillmark-undo/kept.txt"), "kept");
  EXPECT_NE(refusalToRead(".quillmark-undo/kept.txt").find("belongs to Quillmark"),
            std::string::npos);
  EXPECT_NE(refusalToWrite(".Quillmark-UNDO/new.txt").find("belongs to Quillmark"),
            std::string::npos);
}

TEST_F(Paths, UndoFolderCannotBeReachedThroughASymlink) {
  putFile(alpha(".quillmark-undo/kept.txt"), "kept");
  fs::create_directory_symlink(".quillmark-undo", alpha("undo"));
  EXPECT_NE(refusalToRead("undo/kept.txt").find("belongs to Quillmark"), std::string::npos);
}

TEST_F(Paths, TooLongNameIsRefusedWithTheReason) {
  EXPECT_NE(refusalToRead(std::string(5000, 'n')).find("File name too long"), std::string::npos);
}

}  // namespace
