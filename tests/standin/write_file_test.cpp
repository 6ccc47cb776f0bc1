#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

class WriteFile : public ServedFolders, public testing::Test {
 protected:
  explicit WriteFile(bool writable = true) : ServedFolders(writable) {}

  void read(const std::string& path) { result("read_file", {{"drive", "Alpha"}, {"path", path}}); }
  json written(const std::string& path, const std::string& content, bool dryRun = false) {
    return result("write_file", call(path, content, dryRun));
  }
  std::string refused(const std::string& path, const std::string& content, bool dryRun = false) {
    return refusal("write_file", call(path, content, dryRun));
  }

 private:
  static json call(const std::string& path, const std::string& content, bool dryRun) {
    return {{"drive", "Alpha"}, {"path", path}, {"content", content}, {"dry_run", dryRun}};
  }
};
class WriteFileReadOnly : public WriteFile {
 protected:
  WriteFileReadOnly() : WriteFile(false) {}
};

TEST_F(WriteFile, MakesAFileAndTheFoldersAboveIt) {
  const json report = written("a/b/note.txt", "text \u2014\n");
  EXPECT_EQ(contentOf(alpha("a/b/note.txt")), "text \u2014\n");
  EXPECT_EQ(report.at("action"), "create");
  EXPECT_EQ(report.at("bytes"), 9);
  EXPECT_FALSE(report.contains("kept_for_undo"));
}

TEST_F(WriteFile, KeepsWhatItReplaces) {
  putFile(alpha("a/note.txt"), "first");
  const json second = written("a/note.txt", "second");
  const json third = written("a/note.txt", "third");
  EXPECT_EQ(contentOf(alpha("a/note.txt")), "third");
  EXPECT_EQ(second.at("action"), "replace");
  EXPECT_EQ(second.at("replaced_bytes"), 5);
  EXPECT_EQ(contentOf(alpha(second.at("kept_for_undo").get<std::string>())), "first");
  EXPECT_EQ(contentOf(alpha(third.at("kept_for_undo").get<std::string>())), "second");
}

TEST_F(WriteFile, LeavesNoTemporaryFile) {
  written("note.txt", "text");
  EXPECT_EQ(std::distance(fs::directory_iterator(alpha()), fs::directory_iterator()), 1);
}

TEST_F(WriteFile, KeepsThePermissionsOfWhatItReplaces) {
  putFile(alpha("run.sh"), "old");
  fs::permissions(alpha("run.sh"), fs::perms::owner_all);
  written("run.sh", "new");
  EXPECT_EQ(fs::status(alpha("run.sh")).permissions(), fs::perms::owner_all);
}

TEST_F(WriteFile, DryRunOnlyReports) {
  putFile(alpha("note.txt"), "old");
  const json replacing = written("note.txt", "newer", true);
  const json creating = written("a/other.txt", "text", true);
  EXPECT_EQ(replacing.at("action"), "replace");
  EXPECT_EQ(replacing.at("dry_run"), true);
  EXPECT_EQ(replacing.at("bytes"), 5);
  EXPECT_EQ(creating.at("action"), "create");
  EXPECT_EQ(contentOf(alpha("note.txt")), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(alpha()), fs::directory_iterator()), 1);
}

TEST_F(WriteFile, RefusesToReplaceAFileThatChangedSinceItWasRead) {
  putFile(alpha("note.txt"), "one");
  read("note.txt");
  for (const char* change : {"two", "longer than before"}) {
    putFile(alpha("note.txt"), change);
    for (const bool dryRun : {true, false}) {
      EXPECT_EQ(refused("note.txt", "mine", dryRun),
                "\"note.txt\" on the drive \"Alpha\" has changed since it was read; "
                "read it again first.");
    }
    EXPECT_EQ(contentOf(alpha("note.txt")), change);
  }
}

TEST_F(WriteFile, ReplacesAChangedFileThatWasReadAgain) {
  putFile(alpha("note.txt"), "one");
  read("note.txt");
  putFile(alpha("note.txt"), "longer than before");
  read("note.txt");
  written("note.txt", "mine");
  EXPECT_EQ(contentOf(alpha("note.txt")), "mine");
}

TEST_F(WriteFile, MayReplaceWhatItWroteItself) {
  putFile(alpha("note.txt"), "one");
  read("note.txt");
  written("note.txt", "two");
  written("note.txt", "three");
  EXPECT_EQ(contentOf(alpha("note.txt")), "three");
}

TEST_F(WriteFile, RefusesToReplaceAFileThatChangedSinceItWroteIt) {
  written("note.txt", "mine");
  putFile(alpha("note.txt"), "somebody else's");
  EXPECT_NE(refused("note.txt", "mine again").find("has changed"), std::string::npos);
}

TEST_F(WriteFile, CreatesAFileThatWasRemovedSinceItWasRead) {
  putFile(alpha("note.txt"), "one");
  read("note.txt");
  fs::remove(alpha("note.txt"));
  EXPECT_EQ(written("note.txt", "two").at("action"), "create");
}

TEST_F(WriteFile, RefusesFoldersAndPathsThroughFiles) {
  putFile(alpha("file"), "text");
  fs::create_directory(alpha("folder"));
  for (const bool dryRun : {true, false}) {
    EXPECT_EQ(refused("folder", "x", dryRun), R"("folder" on the drive "Alpha" is not a file.)");
    EXPECT_EQ(refused("", "x", dryRun), R"(The top level of the drive "Alpha" is not a file.)");
    EXPECT_EQ(refused("file/below/note", "x", dryRun),
              "\"file/below/note\" on the drive \"Alpha\" can't be written: "
              "\"file\" is not a folder.");
  }
}

TEST_F(WriteFile, ReplacesNothingIfTheUndoFolderIsALink) {
  putFile(alpha("note.txt"), "old");
  fs::create_directory(outside("elsewhere"));
  fs::create_directory_symlink(outside("elsewhere"), alpha(".quillmark-undo"));
  EXPECT_NE(refused("note.txt", "new").find("nothing was replaced"), std::string::npos);
  EXPECT_EQ(contentOf(alpha("note.txt")), "old");
  EXPECT_TRUE(fs::is_empty(outside("elsewhere")));
}

TEST_F(WriteFile, WritesMoreThanAReplyCanHold) {
  const std::string text(standin::maxReplyBytes + 1, 'q');
  EXPECT_EQ(written("large.txt", text).at("bytes"), text.size());
  EXPECT_EQ(fs::file_size(alpha("large.txt")), text.size());
}

TEST_F(WriteFileReadOnly, RefusesEvenADryRun) {
  for (const bool dryRun : {true, false}) {
    EXPECT_EQ(refused("note.txt", "text", dryRun),
              "The drive \"Alpha\" may only be read; nothing was changed.");
  }
  EXPECT_TRUE(fs::is_empty(alpha()));
}

}  // namespace
