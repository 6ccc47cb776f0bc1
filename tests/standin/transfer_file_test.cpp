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

TEST_F(TransferFile, CopiesToTheTopLevelByDefault) {
  const json report = result("transfer_file", toBeta());
  EXPECT_EQ(report.at("action"), "copy");
  EXPECT_EQ(report.at("to_path"), "note.txt");
  EXPECT_EQ(contentOf(beta("note.txt")), "text");
  EXPECT_EQ(contentOf(alpha("a/note.txt")), "text");
}

TEST_F(TransferFile, MakesTheDestinationFolder) {
  EXPECT_EQ(result("transfer_file", toBeta({{"to_folder", "x/y"}})).at("to_path"), "x/y/note.txt");
  EXPECT_EQ(contentOf(beta("x/y/note.txt")), "text");
}

TEST_F(TransferFile, MoveRemovesTheOriginal) {
  EXPECT_EQ(result("transfer_file", toBeta({{"move", true}})).at("action"), "move");
  EXPECT_EQ(contentOf(beta("note.txt")), "text");
  EXPECT_FALSE(fs::exists(alpha("a/note.txt")));
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
            "\"note.txt\" on the drive \"Beta\" exists already; nothing was transferred.");
  EXPECT_EQ(contentOf(beta("note.txt")), "another");
  EXPECT_EQ(contentOf(alpha("a/note.txt")), "text");
}

TEST_F(TransferFile, WorksWithinOneDriveButNotOntoTheFileItself) {
  result("transfer_file", toBeta({{"to_drive", "Alpha"}}));
  EXPECT_EQ(contentOf(alpha("note.txt")), "text");
  EXPECT_NE(
      refusal("transfer_file", toBeta({{"to_drive", "Alpha"}, {"to_folder", "a"}, {"move", true}}))
          .find("exists already"),
      std::string::npos);
  EXPECT_EQ(contentOf(alpha("a/note.txt")), "text");
}

TEST_F(TransferFile, RefusesFoldersAndMissingFiles) {
  EXPECT_NE(refusal("transfer_file", toBeta({{"path", "a"}})).find("is not a file"),
            std::string::npos);
  EXPECT_NE(refusal("transfer_file", toBeta({{"path", "none"}})).find("There is no file"),
            std::string::npos);
}

TEST_F(TransferFile, RefusesAFileAsDestinationFolder) {
  putFile(beta("x"), "");
  for (const bool dryRun : {true, false}) {
    EXPECT_NE(refusal("transfer_file", toBeta({{"to_folder", "x/y"}, {"dry_run", dryRun}}))
                  .find("\"x\" is not a folder"),
              std::string::npos);
  }
}

TEST_F(TransferFile, DoesNotLeaveTheDrives) {
  putFile(outside("secret.txt"), "secret");
  fs::create_directory(outside("elsewhere"));
  fs::create_directory_symlink(outside("elsewhere"), beta("link"));
  EXPECT_NE(refusal("transfer_file", toBeta({{"path", "../secret.txt"}})).find("leads out"),
            std::string::npos);
  EXPECT_NE(refusal("transfer_file", toBeta({{"to_folder", "../elsewhere"}})).find("leads out"),
            std::string::npos);
  EXPECT_NE(refusal("transfer_file", toBeta({{"to_folder", "link"}})).find("leads out"),
            std::string::npos);
  EXPECT_TRUE(fs::is_empty(outside("elsewhere")));
}

TEST_F(TransferFile, DoesNotFollowALinkAtTheDestination) {
  fs::create_symlink(outside("made.txt"), beta("note.txt"));
  EXPECT_NE(refusal("transfer_file", toBeta()).find("exists already"), std::string::npos);
  EXPECT_FALSE(fs::exists(outside("made.txt")));
}

TEST_F(TransferFileReadOnly, RefusesToCopy) {
  EXPECT_EQ(refusal("transfer_file", toBeta()),
            "The drive \"Beta\" may only be read; nothing was changed.");
  EXPECT_TRUE(fs::is_empty(beta()));
}

}  // namespace
