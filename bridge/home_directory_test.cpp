#include "bridge/home_directory.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

/// An environment variable that only these tests use.
constexpr const char* variable = "QUILLMARK_TEST_HOME";

std::string homeOfUser() {
  const passwd* user = getpwuid(getuid());
  return user != nullptr ? user->pw_dir : "";
}

class HomeDirectory : public testing::Test {
 protected:
  void TearDown() override { unsetenv(variable); }
};

TEST_F(HomeDirectory, IsTheValueOfTheVariable) {
  setenv(variable, "/a folder/é", 1);
  EXPECT_EQ(bridge::homeDirectory(variable), "/a folder/é");
}

TEST_F(HomeDirectory, IsThatOfTheUserIfTheVariableIsMissing) {
  EXPECT_EQ(bridge::homeDirectory(variable), homeOfUser());
}

TEST_F(HomeDirectory, IsThatOfTheUserIfTheVariableIsEmpty) {
  setenv(variable, "", 1);
  EXPECT_EQ(bridge::homeDirectory(variable), homeOfUser());
}

// On macOS the application ignores HOME.
TEST_F(HomeDirectory, DependsOnTheVariableOfTheSystem) {
#ifdef __APPLE__
  EXPECT_STREQ(bridge::homeVariable, "CFFIXED_USER_HOME");
#else
  EXPECT_STREQ(bridge::homeVariable, "HOME");
#endif
}

}  // namespace
