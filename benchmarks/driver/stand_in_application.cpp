#include "benchmarks/driver/stand_in_application.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "tests/support/request_end.h"
#include "tests/support/socket_io.h"

namespace {

pollfd readable(int descriptor) {
  return {.fd = descriptor, .events = POLLIN, .revents = 0};
}

}  // namespace

StandInApplication::StandInApplication() {
  std::array<int, 2> stop{};
  if (::pipe(stop.data()) != 0) throw std::system_error(errno, std::generic_category(), "no pipe");
  stopReader_ = Descriptor(stop[0]);
  stopWriter_ = Descriptor(stop[1]);
  thread_ = std::thread([this] { serve(); });
}

StandInApplication::~StandInApplication() {
  stopWriter_.reset();
  thread_.join();
}

void StandInApplication::expect(const Script& script) {
  exchanges_[0].reply = script.probeReply;
  exchanges_[0].length = script.probeLength;
  exchanges_[1].reply = script.callReply;
  exchanges_[1].length = script.callLength;
  for (Exchange& exchange : exchanges_) {
    const std::size_t needed = std::max<std::size_t>(exchange.length, 65536);
    if (exchange.buffer.size() < needed) exchange.buffer.resize(needed);
    exchange.received = 0;
  }
  count_ = 0;
}

std::string_view StandInApplication::request(std::size_t index) const {
  return std::string_view(exchanges_[index].buffer).substr(0, exchanges_[index].received);
}

std::size_t StandInApplication::requestCount() const {
  busy_.wait(true);
  return count_;
}

void StandInApplication::serve() {
  std::vector<pollfd> polled;
  while (true) {
    polled = {readable(stopReader_.get()), readable(listener_.socket())};
    for (const Descriptor& connection : answered_) polled.push_back(readable(connection.get()));
    if (::poll(polled.data(), static_cast<nfds_t>(polled.size()), -1) < 0) continue;
    if (polled[0].revents != 0) return;
    if (polled[1].revents != 0) answer(Descriptor(listener_.accept()));
    closeFinished(polled);
  }
}

void StandInApplication::answer(Descriptor connection) {
  Exchange& exchange = exchanges_[count_ % exchanges_.size()];
  busy_ = true;
  receive(connection.get(), exchange);
  ++count_;
  sendAll(connection.get(), exchange.reply);
  busy_ = false;
  busy_.notify_all();
  answered_.push_back(std::move(connection));
}

void StandInApplication::receive(int connection, Exchange& exchange) {
  RequestEnd end;
  std::string& buffer = exchange.buffer;
  exchange.received = 0;
  for (bool whole = false; !whole;) {
    if (exchange.received == buffer.size()) buffer.resize(2 * buffer.size());
    char* fresh = buffer.data() + exchange.received;
    const ssize_t count = ::recv(connection, fresh, buffer.size() - exchange.received, 0);
    if (count <= 0) return;
    const auto size = static_cast<std::size_t>(count);
    exchange.received += size;
    whole =
        exchange.length > 0 ? exchange.received >= exchange.length : end.reachedBy({fresh, size});
  }
}

// Anything that a client does after its reply, closing or otherwise, ends its connection.
void StandInApplication::closeFinished(const std::vector<pollfd>& polled) {
  std::erase_if(answered_, [&polled](const Descriptor& connection) {
    return std::ranges::any_of(polled, [&connection](const pollfd& entry) {
      return entry.fd == connection.get() && entry.revents != 0;
    });
  });
}
