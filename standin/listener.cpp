#include "standin/listener.h"

#include <thread>
#include <vector>

using asio::ip::tcp;

namespace standin {

Listener::Listener(asio::io_context& context, Answer answer)
    : context_(context),
      acceptor_(context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)),
      pause_(context),
      answer_(std::move(answer)) {
  accept();
}

void Listener::accept() {
  acceptor_.async_accept(asio::any_io_executor(asio::make_strand(context_)),
                         [this](const std::error_code& failure, tcp::socket socket) {
                           if (failure) return acceptLater();
                           std::make_shared<Connection>(std::move(socket), answer_)->start();
                           accept();
                         });
}

// Accepting fails when descriptors run out; trying again at once would only spin.
void Listener::acceptLater() {
  pause_.expires_after(std::chrono::milliseconds(50));
  pause_.async_wait([this](const std::error_code& cancelled) {
    if (!cancelled) accept();
  });
}

void runOnThreads(asio::io_context& context) {
  constexpr int threadCount = 8;
  std::vector<std::thread> threads;
  for (int i = 1; i < threadCount; ++i) threads.emplace_back([&context] { context.run(); });
  context.run();
  for (std::thread& thread : threads) thread.join();
}

}  // namespace standin
