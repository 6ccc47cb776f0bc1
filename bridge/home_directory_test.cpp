#include "bridge/home_directory.h"

#include <gtest/gtest.h>
#include <pwd.h>
#ifdef __linux__
#include <sched.h>
#endif
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
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

#ifdef __linux__
/// Makes this process one of a user of whom the system has no record. False if that is not allowed.
bool becomeUnknownUser() {
  constexpr uid_t unknown = 54321;
  const std::string map = std::to_string(unknown) + " " + std::to_string(geteuid()) + " 1";
  if (unshare(CLONE_NEWUSER) != 0) {  // for example in a changed root
    return setuid(unknown) == 0 && getpwuid(getuid()) == nullptr;
  }
  std::ofstream file("/proc/self/uid_map");
  file << map << std::flush;
  return file.good() && getpwuid(getuid()) == nullptr;
}

TEST_F(HomeDirectory, IsEmptyIfTheSystemDoesNotKnowTheUser) {
  constexpr int notTried = 77;
  const pid_t child = fork();
  if (child == 0) {
    if (!becomeUnknownUser()) std::exit(notTried);
    std::exit(bridge::homeDirectory(variable).empty() ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == notTried)
    GTEST_SKIP() << "needs user namespaces, or root: sysctl kernel.unprivileged_userns_clone=1";
  EXPECT_EQ(WEXITSTATUS(status), 0);
}
#endif

// On macOS the application ignores HOME.
TEST_F(HomeDirectory, DependsOnTheVariableOfTheSystem) {
#ifdef __APPLE__
  EXPECT_STREQ(bridge::homeVariable, "CFFIXED_USER_HOME");
#else
  EXPECT_STREQ(bridge::homeVariable, "HOME");
#endif
}

}  // namespace
