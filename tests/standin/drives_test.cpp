#include "standin/drives.h"

#include <gtest/gtest.h>

#include "standin/refusal.h"
#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

namespace {

class Drives : public testing::Test {
 protected:
  fs::path folder(const std::string& path) {
    fs::create_directories(place_.folder() / path);
    return place_.folder() / path;
  }
  static Names namesFor(const std::vector<fs::path>& folders) {
    standin::Drives drives;
    for (const fs::path& folder : folders) drives.add(folder, true);
    Names names;
    for (const standin::Drive& drive : drives.all()) names.push_back(drive.name);
    return names;
  }

  TemporaryHome place_;
};

TEST_F(Drives, AreNamedAfterTheirFolders) {
  EXPECT_EQ(namesFor({folder("one/Docs"), folder("Photos/")}), (Names{"Docs", "Photos"}));
}

TEST_F(Drives, GetANumberIfTheNameIsTaken) {
  EXPECT_EQ(namesFor({folder("a/Docs"), folder("b/Docs 2"), folder("c/Docs"), folder("d/Docs")}),
            (Names{"Docs", "Docs 2", "Docs 3", "Docs 4"}));
}

TEST_F(Drives, RefuseWhatIsNotAFolder) {
  putFile(place_.folder() / "file", "");
  EXPECT_THROW(namesFor({place_.folder() / "file"}), standin::Refusal);
  EXPECT_THROW(namesFor({place_.folder() / "nowhere"}), standin::Refusal);
}

TEST_F(Drives, RefuseAFolderInsideAnother) {
  const fs::path outer = folder("outer");
  const fs::path inner = folder("outer/inner");
  EXPECT_THROW(namesFor({outer, inner}), standin::Refusal);
  EXPECT_THROW(namesFor({inner, outer}), standin::Refusal);
  EXPECT_THROW(namesFor({outer, outer}), standin::Refusal);
  EXPECT_EQ(namesFor({outer, folder("outer-two")}), (Names{"outer", "outer-two"}));
}

}  // namespace
