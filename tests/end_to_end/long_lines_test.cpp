#ifdef __linux__

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <ctime>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/support/conversation.h"
#include "tests/support/sanitizers.h"

namespace {

using namespace std::chrono_literals;

// The work that long lines cause, measured by what the system counts for the server's process.
class LongLines : public Conversation {
 protected:
  // A field of the process's status, counted from 1 as in the manual page of /proc/PID/stat. Only
  // fields after the name of the program.
  std::string statusField(std::size_t number) const {
    std::ifstream file("/proc/" + std::to_string(server->pid()) + "/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::istringstream fields(text.substr(text.rfind(") ") + 2));
    const std::vector<std::string> values{std::istream_iterator<std::string>(fields), {}};
    return values.at(number - 3);
  }

  std::size_t pageFaults() const { return std::stoul(statusField(10)); }
  std::size_t residentBytes() const {
    return std::stoul(statusField(24)) * static_cast<std::size_t>(::getpagesize());
  }

  Seconds processorTime() const {
    clockid_t clock{};
    timespec time{};
    EXPECT_EQ(clock_getcpuclockid(server->pid(), &clock), 0);
    EXPECT_EQ(clock_gettime(clock, &time), 0);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  }

  // Waits until the server has read all input and sleeps until there is more.
  void waitUntilInputIsRead() const {
    const int input =
        ::open(("/proc/" + std::to_string(server->pid()) + "/fd/0").c_str(), O_RDONLY | O_NONBLOCK);
    int unread = 1;
    while (::ioctl(input, FIONREAD, &unread) == 0 && (unread > 0 || statusField(3) != "S")) {
      std::this_thread::sleep_for(1ms);
    }
    ::close(input);
  }
};

TEST_F(LongLines, AreParsedWhileTheyArrive) {
  std::string line = R"({"id":1,"method":"ping","unused":[0)";
  while (line.size() < 5'000'000) line += ",0";
  EXPECT_TRUE(hasNoFurtherReply());
  const Seconds start = processorTime();
  server->send(line + "]}");
  waitUntilInputIsRead();
  const Seconds lineFeed = processorTime();
  server->send("\n");
  EXPECT_EQ(receive().at("id"), 1);
  EXPECT_LT(processorTime() - lineFeed, (lineFeed - start) / 3);
}

// The allocators of sanitizers have a policy of their own.
#if defined(__GLIBC__) && !UNDER_ADDRESS_SANITIZER && !UNDER_THREAD_SANITIZER

// Getting the memory of a message from the system costs a page fault for every 4 KiB.
TEST_F(LongLines, ReuseTheMemoryOfEarlierOnes) {
  const std::string line = toolCall(R"({"name":"write_file","arguments":{"content":")" +
                                    std::string(20'000'000, 'x') + "\"}}");
  sendLine(line);
  receiveLine();
  const std::size_t before = pageFaults();
  sendLine(line);
  receiveLine();
  EXPECT_LT(pageFaults() - before, 500U);
}

// The C library keeps up to 32 MiB.
TEST_F(LongLines, DoNotKeepTheirMemoryAfterShortOnes) {
  sendLine(R"({"id":1,"method":"ping","unused":")" + std::string(100'000'000, 'x') + "\"}");
  receiveLine();
  for (int i = 0; i < 3; ++i) {
    sendLine(R"({"id":2,"method":"ping"})");
    receiveLine();
  }
  EXPECT_LT(residentBytes(), 40'000'000U);
}

#endif

}  // namespace

#endif
