#include "standin/connection.h"

namespace standin {
namespace {

constexpr std::chrono::seconds limitToRead{60};
constexpr std::chrono::seconds limitToWrite{60};
constexpr std::chrono::seconds limitToClose{10};
constexpr std::size_t mostRequestBytes = 256U << 20U;

}  // namespace

Connection::Connection(asio::ip::tcp::socket socket, Answer answer)
    : socket_(std::move(socket)), limit_(socket_.get_executor()), answer_(std::move(answer)) {}

void Connection::start() {
  closeAfter(limitToRead);
  readRequest();
}

void Connection::readRequest() {
  socket_.async_read_some(
      asio::buffer(block_),
      [self = shared_from_this()](const std::error_code& failure, std::size_t bytes) {
        if (failure) return self->close();
        const std::string_view received(self->block_.data(), bytes);
        self->request_ += received;
        const bool complete = self->requestEnd_.reachedBy(received);
        if (complete || self->request_.size() > mostRequestBytes) return self->writeReply();
        self->readRequest();
      });
}

// The server takes what comes in one delivery, so the whole reply goes out at once.
void Connection::writeReply() {
  limit_.expires_at(asio::steady_timer::time_point::max());
  reply_ = answer_(request_);
  closeAfter(limitToWrite);
  asio::async_write(socket_, asio::buffer(reply_),
                    [self = shared_from_this()](const std::error_code& failure, std::size_t) {
                      if (failure) return self->close();
                      self->closeAfter(limitToClose);
                      self->awaitClose();
                    });
}

// Closing first could throw away a reply that the server has not read yet.
void Connection::awaitClose() {
  socket_.async_read_some(asio::buffer(block_),
                          [self = shared_from_this()](const std::error_code& failure, std::size_t) {
                            failure ? self->close() : self->awaitClose();
                          });
}

void Connection::closeAfter(std::chrono::seconds limit) {
  limit_.expires_after(limit);
  limit_.async_wait([self = shared_from_this()](const std::error_code& cancelled) {
    const bool postponed = self->limit_.expiry() > asio::steady_timer::clock_type::now();
    if (!cancelled && !postponed) self->close();
  });
}

void Connection::close() {
  std::error_code ignored;
  socket_.close(ignored);
  limit_.cancel();
}

}  // namespace standin
