// transfer_file.
#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

class TransferFile : public ServedFolders, public testing::Test {
 protected:
  explicit TransferFile(bool writable = true) : ServedFolders(writable) {
    putFile(alpha("a/note.txt"), "text");
  }

  static json toBeta(const json& further = json::object()) {
    json call{{"from_drive", "Alpha"}, {"path", "a/note.txt"}, {"to_drive", "Beta"}};
    call.update(further);
    return call;
  }
};
class TransferFileReadOnly : public TransferFile {
 protected:
  TransferFileReadOnly() : TransferFile(false) {}
};

TEST_F(TransferFile, CopiesToTheTopLevelUnlessTold) {
  const json report = result("transfer_file", toBeta());
  EXPECT_EQ(report.at("action"), "copy");
  EXPECT_EQ(report.at("to_path"), "note.txt");
  EXPECT_EQ(contentOf(beta("note.txt")), "text");
  EXPECT_EQ(contentOf(alpha("a/note.txt")), "text");
}

TEST_F(TransferFile, MakesTheFolderItIsSentTo) {
  EXPECT_EQ(result("transfer_file", toBeta({{"to_folder", "x/y"}})).at("to_path"), "x/y/note.txt");
  EXPECT_EQ(contentOf(beta("x/y/note.txt")), "text");
}

TEST_F(TransferFile, MoveRemovesTheOriginal) {
  EXPECT_EQ(result("transfer_file", toBeta({{"move", true}})).at("action"), "move");
  EXPECT_EQ(contentOf(beta("note.txt")), "text");
  EXPECT_FALSE(fs::exists(alpha("a/note.txt")));
}

TEST_F(TransferFile, KeepsTheDate) {
  age(alpha("a/note.txt"), 1000);
  const auto date = fs::last_write_time(alpha("a/note.txt"));
  result("transfer_file", toBeta());
  EXPECT_EQ(fs::last_write_time(beta("note.txt")), date);
}

TEST_F(TransferFile, DryRunOnlyReports) {
  const json report =
      result("transfer_file", toBeta({{"move", true}, {"to_folder", "x"}, {"dry_run", true}}));
  EXPECT_EQ(report.at("action"), "move");
  EXPECT_EQ(report.at("bytes"), 4);
  EXPECT_EQ(report.at("dry_run"), true);
  EXPECT_TRUE(fs::is_empty(beta()));
  EXPECT_TRUE(fs::exists(alpha("a/note.txt")));
}

TEST_F(TransferFile, ReplacesNothing) {
  putFile(beta("note.txt"), "another");
  EXPECT_EQ(refusal("transfer_file", toBeta({{"move", true}})),
            "There is already a \"note.txt\" on the drive \"Beta\"; nothing was transferred.");
  EXPECT_EQ(contentOf(beta("note.txt")), "another");
  EXPECT_EQ(contentOf(alpha("a/note.txt")), "text");
}

TEST_F(TransferFile, WithinOneDriveIsFineButNotOntoItself) {
  result("transfer_file", toBeta({{"to_drive", "Alpha"}}));
  EXPECT_EQ(contentOf(alpha("note.txt")), "text");
  EXPECT_NE(
      refusal("transfer_file", toBeta({{"to_drive", "Alpha"}, {"to_folder", "a"}, {"move", true}}))
          .find("already"),
      std::string::npos);
  EXPECT_EQ(contentOf(alpha("a/note.txt")), "text");
}

TEST_F(TransferFile, FoldersAndMissingFilesAreRefused) {
  EXPECT_NE(refusal("transfer_file", toBeta({{"path", "a"}})).find("is a folder"),
            std::string::npos);
  EXPECT_NE(refusal("transfer_file", toBeta({{"path", "none"}})).find("There is no file"),
            std::string::npos);
}

TEST_F(TransferFile, FileInPlaceOfTheFolderIsRefused) {
  putFile(beta("x"), "");
  EXPECT_EQ(refusal("transfer_file", toBeta({{"to_folder", "x"}})),
            "\"x\" on the drive \"Beta\" is not a folder.");
}

TEST_F(TransferFile, NeitherEndLeavesItsDrive) {
  putFile(outside("secret.txt"), "secret");
  fs::create_directory(outside("elsewhere"));
  fs::create_directory_symlink(outside("elsewhere"), beta("link"));
  EXPECT_NE(refusal("transfer_file", toBeta({{"path", "../secret.txt"}})).find(".."),
            std::string::npos);
  EXPECT_NE(refusal("transfer_file", toBeta({{"to_folder", "../elsewhere"}})).find(".."),
            std::string::npos);
  EXPECT_NE(refusal("transfer_file", toBeta({{"to_folder", "link"}})).find("leads out"),
            std::string::npos);
  EXPECT_TRUE(fs::is_empty(outside("elsewhere")));
}

TEST_F(TransferFile, DanglingLinkAtTheDestinationIsNotFollowed) {
  fs::create_symlink(outside("made.txt"), beta("note.txt"));
  EXPECT_NE(refusal("transfer_file", toBeta()).find("already"), std::string::npos);
  EXPECT_FALSE(fs::exists(outside("made.txt")));
}

TEST_F(TransferFileReadOnly, IsRefused) {
  EXPECT_EQ(refusal("transfer_file", toBeta()),
            "The drive \"Beta\" may only be read; nothing was transferred.");
  EXPECT_TRUE(fs::is_empty(beta()));
}

}  // namespace
