#include "tests/reliability/answering_app.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "tests/support/request_end.h"
#include "tests/support/socket_io.h"

namespace {

/// The whole request, or what was received of it.
std::string readRequest(int connection) {
  std::string request;
  RequestEnd end;
  std::array<char, 65536> block{};
  while (true) {
    const ssize_t count = ::recv(connection, block.data(), block.size(), 0);
    if (count <= 0) return request;
    const std::string_view piece(block.data(), static_cast<std::size_t>(count));
    request += piece;
    if (end.reachedBy(piece)) return request;
  }
}

}  // namespace

AnsweringApp::AnsweringApp(Answer answer)
    : answer_(std::move(answer)), thread_(&AnsweringApp::serve, this) {}

AnsweringApp::~AnsweringApp() {
  ending_ = true;
  ::shutdown(listener_.socket(), SHUT_RDWR);  // wakes accept()
  thread_.join();
  answerLate("");
}

void AnsweringApp::serve() {
  while (!ending_) {
    if (const int connection = listener_.accept(); connection >= 0) answer(connection);
  }
}

void AnsweringApp::answer(int connection) {
  const auto request = nlohmann::json::parse(readRequest(connection), nullptr, false);
  const std::optional<std::string> reply = request.is_discarded() ? "" : answer_(request);
  if (!reply) {
    const std::lock_guard lock(mutex_);
    leftOpen_.push_back(connection);
    return;
  }
  sendAll(connection, *reply);
  ::close(connection);
}

void AnsweringApp::answerLate(std::string_view reply) {
  const std::lock_guard lock(mutex_);
  for (const int connection : std::exchange(leftOpen_, {})) {
    sendAll(connection, reply);
    ::close(connection);
  }
}
