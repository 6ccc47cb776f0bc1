#include "tests/support/server_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "tests/support/child_start.h"

namespace {

using Clock = std::chrono::steady_clock;
using Pair = std::array<int, 2>;

void setNonBlocking(int descriptor) {
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

// The reading end and the writing end.
Pair makeChannel(bool datagram) {
  Pair ends{};
  const int result =
      datagram ? ::socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()) : ::pipe(ends.data());
  if (result != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  return ends;
}

bool waitUntil(int descriptor, short event, Clock::time_point deadline) {
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd wanted{.fd = descriptor, .events = event, .revents = 0};
    const int ready = ::poll(&wanted, 1, static_cast<int>(std::max<long long>(left, 0)));
    if (ready > 0) return true;
    if (ready == 0 && left <= 0) return false;
  }
}

std::chrono::duration<double> seconds(const timeval& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

}  // namespace

ServerProcess::ServerProcess(const TemporaryHome& home, const ServerSetup& setup)
    : error_(std::tmpfile(), &std::fclose) {
  const Pair in = makeChannel(false);
  const Pair out = makeChannel(setup.datagramOutput);
  input_ = in[1];
  output_ = out[0];
  setNonBlocking(input_);
  setNonBlocking(output_);
  if (setup.nonBlockingPipes) {
    setNonBlocking(in[0]);
    setNonBlocking(out[1]);
  }
  try {
    pid_ = startServer(home, setup,
                       {.input = in[0], .output = out[1], .error = ::fileno(error_.get())});
  } catch (...) {
    for (const int end : {in[0], in[1], out[0], out[1]}) ::close(end);
    throw;
  }
  ::close(in[0]);
  ::close(out[1]);
}

ServerProcess::~ServerProcess() {
  closeInput();
  if (!endsWithin(std::chrono::seconds(2))) {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  closeOutput();
}

void ServerProcess::send(std::string_view bytes) {
  const auto deadline = Clock::now() + generous;
  while (!bytes.empty()) {
    if (!waitUntil(input_, POLLOUT, deadline))
      throw std::runtime_error("the server reads no input");
    const ssize_t written = ::write(input_, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EAGAIN && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "write to the server");
    }
  }
}

void ServerProcess::closeInput() {
  if (input_ >= 0) ::close(input_);
  input_ = -1;
}

void ServerProcess::closeOutput() {
  if (output_ >= 0) ::close(output_);
  output_ = -1;
}

// False at the end of the output and if there is none in time.
bool ServerProcess::receiveOutput(Duration within, std::size_t atMost) {
  if (!waitUntil(output_, POLLIN, Clock::now() + within)) return false;
  const std::size_t before = unread_.size();
  unread_.resize(before + atMost);
  const ssize_t count = ::read(output_, unread_.data() + before, atMost);
  unread_.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return count > 0;
}

std::optional<std::string> ServerProcess::readLine(Duration within) {
  const auto deadline = Clock::now() + within;
  std::size_t searched = 0;
  while (true) {
    const std::size_t end = unread_.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = unread_.substr(0, end);
      unread_.erase(0, end + 1);
      return line;
    }
    searched = unread_.size();
    const auto left = std::chrono::ceil<Duration>(deadline - Clock::now());
    if (!receiveOutput(std::max(left, Duration(0)), std::size_t{1} << 16)) return std::nullopt;
  }
}

std::string ServerProcess::readSome(std::size_t atMost, Duration within) {
  if (unread_.empty()) receiveOutput(within, atMost);
  std::string some = unread_.substr(0, atMost);
  unread_.erase(0, some.size());
  return some;
}

std::string ServerProcess::readWrite() {
  receiveOutput(generous, std::size_t{1} << 16);
  return std::exchange(unread_, {});
}

bool ServerProcess::collectExit() {
  int status = 0;
  rusage usage{};
  if (::wait4(pid_, &status, WNOHANG, &usage) != pid_) return false;
  if (WIFEXITED(status)) exit_.code = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) exit_.signal = WTERMSIG(status);
  exit_.processorTime = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  ended_ = true;
  return true;
}

// Waits for the process rather than for the end of its output, which a launched child may keep
// open. Reads the output meanwhile, because a full pipe would keep the process from ending.
bool ServerProcess::endsWithin(Duration time) {
  const auto deadline = Clock::now() + time;
  while (!ended_ && !collectExit()) {
    if (Clock::now() > deadline) return false;
    if (!receiveOutput(Duration(5), std::size_t{1} << 16)) ::usleep(1000);
  }
  return true;
}

ExitStatus ServerProcess::waitForExit(Duration within) {
  if (!endsWithin(within)) throw std::runtime_error("the server does not exit");
  while (receiveOutput(Duration(0), std::size_t{1} << 16)) {
  }
  return exit_;
}

std::string ServerProcess::standardError() const {
  std::string text;
  std::array<char, 4096> block{};
  off_t offset = 0;
  while (true) {
    const ssize_t count = ::pread(::fileno(error_.get()), block.data(), block.size(), offset);
    if (count <= 0) return text;
    text.append(block.data(), static_cast<std::size_t>(count));
    offset += count;
  }
}
