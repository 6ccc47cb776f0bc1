#pragma once

#include <array>
#include <chrono>
#include <exception>  // asio takes it for granted
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <asio.hpp>

#include "standin/request_end.h"

namespace standin {

/// Turns one request's JSON text into the reply's. Called on several threads at once.
using Answer = std::function<std::string(std::string_view request)>;

/// One connection of the server: one request, one reply, and then the wait for the server to
/// close. Keeps itself alive while anything is under way; all its handlers run in turn, on the
/// socket's strand.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(asio::ip::tcp::socket socket, Answer answer);

  void start();

 private:
  void readRequest();
  void writeReply();
  void awaitClose();
  void closeAfter(std::chrono::seconds limit);
  void close();

  asio::ip::tcp::socket socket_;
  asio::steady_timer limit_;
  Answer answer_;
  RequestEnd requestEnd_;
  std::array<char, 65536> block_{};
  std::string request_;
  std::string reply_;
};

}  // namespace standin
