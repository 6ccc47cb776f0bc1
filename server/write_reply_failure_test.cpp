#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "server/server.h"
#include "tests/unit/standard_output.h"

// What is written after a write has failed. The output is a file that may not grow beyond a limit,
// so each test decides where the first reply fails. It runs in a process of its own, because the
// state of the output lasts as long as the process.

namespace {

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

void limitFileSize(rlim_t bytes) {
  rlimit limit{};
  ::getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = bytes;
  ::setrlimit(RLIMIT_FSIZE, &limit);
}

/// The content of the output when the first reply was written with this limit and the second one
/// without.
std::string outputOfTwoReplies(rlim_t limit) {
  const File file(std::tmpfile(), &std::fclose);
  std::signal(SIGXFSZ, SIG_IGN);
  {
    const StandardOutput output(fileno(file.get()));
    limitFileSize(limit);
    server::writeReply("first");
    limitFileSize(RLIM_INFINITY);
    server::writeReply("second");
  }
  lseek(fileno(file.get()), 0, SEEK_SET);
  return readToTheEnd(fileno(file.get()));
}

/// Exits with status 0 if the content is as expected. Otherwise shows it.
[[noreturn]] void check(rlim_t limit, const std::string& expected) {
  const std::string output = outputOfTwoReplies(limit);
  if (output != expected) std::fprintf(stderr, "the output is \"%s\"\n", output.c_str());
  std::exit(output == expected ? EXIT_SUCCESS : EXIT_FAILURE);
}

TEST(WriteReplyFailure, OfAWholeReplyDropsIt) {
  EXPECT_EXIT(check(0, "second\n"), testing::ExitedWithCode(EXIT_SUCCESS), "^$");
}

TEST(WriteReplyFailure, InTheMiddleOfAReplyEndsTheOutput) {
  EXPECT_EXIT(check(3, "fir"), testing::ExitedWithCode(EXIT_SUCCESS), "^$");
}

TEST(WriteReplyFailure, OfTheLineFeedIsRepairedBeforeTheNextReply) {
  EXPECT_EXIT(check(5, "first\nsecond\n"), testing::ExitedWithCode(EXIT_SUCCESS), "^$");
}

TEST(WriteReplyFailure, DoesNotHappenWithoutALimit) {
  EXPECT_EXIT(check(RLIM_INFINITY, "first\nsecond\n"), testing::ExitedWithCode(EXIT_SUCCESS), "^$");
}

}  // namespace
