#include "tests/support/scripted_app.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <random>
#include <stdexcept>
#include <utility>

#include "tests/support/loopback_listener.h"
#include "tests/support/scripts.h"

namespace {

// A socket bound to a port of 127.0.0.1, or -1 if the port is taken.
int boundSocket(int type, int port) {
  const int socket = ::socket(AF_INET, type, 0);
  if (socket < 0) return -1;
  const int on = 1;
  if (type == SOCK_STREAM) ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const sockaddr_in address = loopback(static_cast<std::uint16_t>(port));
  if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    return socket;
  }
  ::close(socket);
  return -1;
}

}  // namespace

// No other program may get the port while the application does not listen on it. So the port is one
// that the system does not choose by itself. The UDP port of the same number stays bound, which
// keeps the applications of other tests away.
ScriptedApp::ScriptedApp() : default_(succeed()) {
  int wake[2];
  if (::pipe(wake) != 0) throw std::runtime_error("no pipe");
  wakeRead_ = wake[0];
  wakeWrite_ = wake[1];
  std::random_device random;
  for (int attempt = 0; attempt < 100 && port_ == 0; ++attempt) {
    const int candidate = std::uniform_int_distribution(15000, 32000)(random);
    reservation_ = boundSocket(SOCK_DGRAM, candidate);
    if (reservation_ >= 0 && listenOn(candidate)) {
      port_ = candidate;
    } else {
      ::close(reservation_);
    }
  }
  if (port_ == 0) throw std::runtime_error("no free port");
  acceptor_ = std::thread(&ScriptedApp::acceptConnections, this);
}

ScriptedApp::~ScriptedApp() {
  {
    const std::lock_guard lock(state_.mutex);
    state_.ending = true;
    state_.changed.notify_all();
  }
  wakeAcceptor();
  acceptor_.join();
  for (std::thread& thread : threads_) thread.join();
  stopListening();
  ::close(reservation_);
  ::close(wakeRead_);
  ::close(wakeWrite_);
}

bool ScriptedApp::listenOn(int port) {
  const int socket = boundSocket(SOCK_STREAM, port);
  if (socket < 0) return false;
  if (::listen(socket, 64) != 0) {
    ::close(socket);
    return false;
  }
  listener_ = socket;
  return true;
}

void ScriptedApp::wakeAcceptor() {
  (void)!::write(wakeWrite_, "", 1);
}

// If the acceptor is polling the socket, close() alone would not make it stop listening.
void ScriptedApp::stopListening() {
  const int socket = listener_.exchange(-1);
  if (socket < 0) return;
  ::shutdown(socket, SHUT_RDWR);
  ::close(socket);
}

void ScriptedApp::listenAgain() {
  if (!listenOn(port_)) throw std::runtime_error("the port is taken");
  wakeAcceptor();
}

void ScriptedApp::acceptConnections() {
  while (true) {
    pollfd wanted[] = {{.fd = wakeRead_, .events = POLLIN, .revents = 0},
                       {.fd = listener_, .events = POLLIN, .revents = 0}};
    ::poll(wanted, 2, 50);
    if (wanted[0].revents != 0) {
      char byte = 0;
      (void)!::read(wakeRead_, &byte, 1);
    }
    std::unique_lock lock(state_.mutex);
    if (state_.ending) return;
    if (wanted[1].fd < 0 || (wanted[1].revents & POLLIN) == 0) continue;
    const int socket = ::accept(wanted[1].fd, nullptr, nullptr);
    if (socket < 0) continue;
    const std::size_t index = state_.records.size();
    state_.records.push_back({{}, std::chrono::steady_clock::now(), std::nullopt});
    state_.changed.notify_all();
    lock.unlock();
    if (oneAtATime_) {
      serve(socket, index);
    } else {
      threads_.emplace_back(&ScriptedApp::serve, this, socket, index);
    }
  }
}

void ScriptedApp::serve(int socket, std::size_t index) {
  AppConnection connection(socket, state_, index);
  nextScript()(connection);
  connection.waitForServerToClose();
}

ScriptedApp::Script ScriptedApp::nextScript() {
  const std::lock_guard lock(state_.mutex);
  if (scripts_.empty()) return default_;
  Script next = std::move(scripts_.front());
  scripts_.pop_front();
  return next;
}

void ScriptedApp::script(std::vector<Script> scripts) {
  const std::lock_guard lock(state_.mutex);
  for (Script& script : scripts) scripts_.push_back(std::move(script));
}

void ScriptedApp::setDefault(Script script) {
  const std::lock_guard lock(state_.mutex);
  default_ = std::move(script);
}

void ScriptedApp::release() {
  const std::lock_guard lock(state_.mutex);
  ++state_.released;
  state_.changed.notify_all();
}

template <typename Condition>
bool ScriptedApp::waitFor(Duration within, Condition condition) {
  std::unique_lock lock(state_.mutex);
  return state_.changed.wait_for(lock, within, condition);
}

std::size_t ScriptedApp::connectionCount() {
  const std::lock_guard lock(state_.mutex);
  return state_.records.size();
}

bool ScriptedApp::waitForConnections(std::size_t count, Duration within) {
  return waitFor(within, [&] { return state_.records.size() >= count; });
}

bool ScriptedApp::waitUntilClosedByServer(std::size_t index, Duration within) {
  return waitFor(within, [&] {
    return state_.records.size() > index && state_.records[index].closedByServer.has_value();
  });
}

bool ScriptedApp::waitUntilReceived(std::size_t index, std::size_t bytes, Duration within) {
  return waitFor(within, [&] {
    return state_.records.size() > index && state_.records[index].received.size() >= bytes;
  });
}

ConnectionRecord ScriptedApp::record(std::size_t index) {
  const std::lock_guard lock(state_.mutex);
  return state_.records.at(index);
}
