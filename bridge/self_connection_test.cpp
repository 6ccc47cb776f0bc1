#ifdef __linux__

#include <gtest/gtest.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>

#include "bridge/exchange.h"
#include "tests/support/loopback_listener.h"
#include "tests/support/sanitizers.h"
#include "tests/support/socket_io.h"
#include "tests/unit/as_bytes.h"

// ThreadSanitizer ends a forked process that starts a thread.
#if !UNDER_THREAD_SANITIZER

namespace {

using namespace std::chrono_literals;

constexpr std::uint16_t onlyPort = 40000;

/// Enters a network that has only a loopback device, and only one port for outgoing connections.
/// False if the system does not allow it.
bool enterNetworkWithOnePort() {
  if (::unshare(CLONE_NEWNET) != 0) return false;
  ifreq device{.ifr_ifrn = {"lo"}, .ifr_ifru = {}};
  const int socket = ::socket(AF_INET, SOCK_DGRAM, 0);
  if (::ioctl(socket, SIOCGIFFLAGS, &device) != 0) return false;
  device.ifr_flags = static_cast<short>(device.ifr_flags | IFF_UP);
  if (::ioctl(socket, SIOCSIFFLAGS, &device) != 0) return false;
  std::ofstream ports("/proc/sys/net/ipv4/ip_local_port_range");
  ports << onlyPort << ' ' << onlyPort << '\n' << std::flush;
  return ports.good();
}

bool canConnectToItself() {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  resetWhenClosed(socket);
  const sockaddr_in address = loopback(onlyPort);
  const auto* const anyAddress = reinterpret_cast<const sockaddr*>(&address);
  const bool connected = ::connect(socket, anyAddress, sizeof address) == 0;
  ::close(socket);
  return connected;
}

bool portIsFree() {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = loopback(onlyPort);
  return ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
         ::listen(socket, 1) == 0;
}

/// The result of an exchange in such a network.
enum class Finding : std::uint8_t { refused, connectedToItself, portInUse, notTried };

Finding exchangeOnTheOnlyPort() {
  using enum Finding;
  if (!enterNetworkWithOnePort() || !canConnectToItself()) return notTried;
  const bridge::Outcome outcome = bridge::exchange(onlyPort, asBytes("{}"), 1s);
  if (outcome.ended || outcome.reply) return connectedToItself;
  return portIsFree() ? refused : portInUse;
}

TEST(SelfConnect, CountsAsRefusedAndFreesThePort) {
  const pid_t child = ::fork();
  if (child == 0) std::exit(static_cast<int>(exchangeOnTheOnlyPort()));
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  const auto finding = static_cast<Finding>(WEXITSTATUS(status));
  if (finding == Finding::notTried)
    GTEST_SKIP() << "needs a network of its own: run as root or in a privileged container";
  EXPECT_EQ(finding, Finding::refused);
}

}  // namespace

#endif
#endif
