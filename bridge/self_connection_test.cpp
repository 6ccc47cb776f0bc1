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
#include <cstdlib>
#include <fstream>

#include "bridge/exchange.h"
#include "tests/support/loopback_listener.h"
#include "tests/support/sanitizers.h"
#include "tests/support/socket_io.h"
#include "tests/unit/as_bytes.h"

// That sanitizer ends a forked process which starts a thread.
#if !UNDER_THREAD_SANITIZER

namespace {

using namespace std::chrono_literals;

constexpr std::uint16_t onlyPort = 40000;

/// A network with nothing but a loopback device, on which outgoing connections all get that one
/// port. False if this process may not have one.
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

bool meetsItself() {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  resetWhenClosed(socket);
  const sockaddr_in address = loopback(onlyPort);
  const auto* const anyAddress = reinterpret_cast<const sockaddr*>(&address);
  const bool connected = ::connect(socket, anyAddress, sizeof address) == 0;
  ::close(socket);
  return connected;
}

bool canBeListenedOn() {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = loopback(onlyPort);
  return ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
         ::listen(socket, 1) == 0;
}

/// What became of an exchange there.
enum class Finding { asItShould, tookItselfForTheApplication, keptThePort, notTried };

Finding exchangeWhereOneMeetsItself() {
  using enum Finding;
  if (!enterNetworkWithOnePort() || !meetsItself()) return notTried;
  const bridge::Outcome outcome = bridge::exchange(onlyPort, asBytes("{}"), 1s);
  if (outcome.ended || outcome.reply) return tookItselfForTheApplication;
  return canBeListenedOn() ? asItShould : keptThePort;
}

TEST(SelfConnection, IsNoApplicationAndKeepsNoPortFromIt) {
  const pid_t child = ::fork();
  if (child == 0) std::_Exit(static_cast<int>(exchangeWhereOneMeetsItself()));
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  const auto finding = static_cast<Finding>(WEXITSTATUS(status));
  if (finding == Finding::notTried) GTEST_SKIP() << "no network of its own to be had";
  EXPECT_EQ(finding, Finding::asItShould);
}

}  // namespace

#endif
#endif
