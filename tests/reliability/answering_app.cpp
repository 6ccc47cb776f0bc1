#include "tests/reliability/answering_app.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "tests/support/socket_io.h"

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
  const auto request = nlohmann::json::parse(receiveRequest(connection), nullptr, false);
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
