#ifdef __linux__

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <vector>

#include "tests/support/conversation.h"
#include "tests/support/loopback_listener.h"

namespace {

using namespace std::chrono_literals;

// A listener whose queue is full, so that further connections are neither refused nor accepted
// until acceptFor().
class FullListener {
 public:
  FullListener() {
    while (fill()) {
    }
  }

  ~FullListener() {
    for (const int filler : fillers_) ::close(filler);
  }

  FullListener(const FullListener&) = delete;
  FullListener& operator=(const FullListener&) = delete;

  int port() const { return listener_.port(); }

  // Accepts all connections for that long and returns the bytes received from them.
  std::string acceptFor(std::chrono::milliseconds time) {
    for (const int filler : fillers_) ::close(filler);
    fillers_.clear();
    std::string received;
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
      pollfd wanted{.fd = listener_.socket(), .events = POLLIN, .revents = 0};
      if (::poll(&wanted, 1, 100) > 0) received += receiveFromOne();
    }
    return received;
  }

 private:
  // False if the queue is full.
  bool fill() {
    const int filler = ::socket(AF_INET, SOCK_STREAM, 0);
    if (filler < 0) throw std::runtime_error("no socket");
    fillers_.push_back(filler);
    ::fcntl(filler, F_SETFL, O_NONBLOCK);
    const sockaddr_in address = loopback(listener_.port());
    if (::connect(filler, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
      return true;
    }
    pollfd wanted{.fd = filler, .events = POLLOUT, .revents = 0};
    return ::poll(&wanted, 1, 300) > 0;
  }

  std::string receiveFromOne() const {
    const int connection = listener_.accept();
    std::array<char, 4096> block{};
    pollfd wanted{.fd = connection, .events = POLLIN, .revents = 0};
    const ssize_t count =
        ::poll(&wanted, 1, 500) > 0 ? ::read(connection, block.data(), block.size()) : 0;
    ::close(connection);
    return {block.data(), static_cast<std::size_t>(count > 0 ? count : 0)};
  }

  LoopbackListener listener_{0};
  std::vector<int> fillers_;
};

class PendingConnection : public LaunchConversation {};

TEST_F(PendingConnection, IsGivenUpAtTheLimitAndNotUsedLater) {
  FullListener full;
  endpointFile.publish(full.port());
  launches.script({.publish = EndpointFile::text(app.port())});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x").size(), 1U);
  const Seconds took = launches.startOf(0) - start;
  EXPECT_GE(took, probeLimit);
  EXPECT_LT(took, probeLimit + lateness);
  EXPECT_EQ(full.acceptFor(10s), "") << "the probe was sent after its limit";
}

}  // namespace

#endif
