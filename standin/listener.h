#pragma once

#include <cstdint>
#include <exception>  // asio takes it for granted

#include <asio.hpp>

#include "standin/connection.h"

namespace standin {

/// Listens on a free port of 127.0.0.1 and serves every connection that comes, each by
/// itself, while anybody runs the context. Must outlive that running.
class Listener {
 public:
  /// Listens at once. Throws std::system_error when that can't be.
  Listener(asio::io_context& context, Answer answer);

  std::uint16_t port() const { return acceptor_.local_endpoint().port(); }

 private:
  void accept();
  void acceptLater();

  asio::io_context& context_;
  asio::ip::tcp::acceptor acceptor_;
  asio::steady_timer pause_;
  Answer answer_;
};

/// Runs the context on a few threads, so that a tool that takes long holds up no other, until
/// the context is stopped.
void runOnThreads(asio::io_context& context);

}  // namespace standin
