#pragma once

#include <cstddef>
#include <optional>

#include "json/reader.h"
#include "json/text.h"

namespace bridge {

/// The application's reply to one request, read as JSON while its bytes come in.
class Reply {
 public:
  /// The most bytes that a reply may have; what comes behind them is never looked at.
  static constexpr std::size_t mostBytes = 4194304;

  /// How much more it may take.
  [[nodiscard]] std::size_t left() const { return mostBytes - size(); }

  /// Room for further bytes: `left()` of them once the reply has turned out to be a big one.
  /// What is written there is taken with received().
  char* room(std::size_t count) { return bytes_.room(count); }
  void received(std::size_t count) {
    bytes_.commit(count);
    reader_.read(bytes_.view());
  }

  [[nodiscard]] std::size_t size() const { return bytes_.size(); }
  [[nodiscard]] bool isEmpty() const { return size() == 0; }

  /// Whether the bytes so far are one whole JSON message.
  [[nodiscard]] bool isWhole() const { return reader_.state() == json::Reader::State::complete; }

  /// The message; none if the bytes are not one. Points into this reply, which must outlive
  /// it but may be moved. To be called once.
  std::optional<json::Document> document() {
    if (!isWhole()) return std::nullopt;
    return std::move(reader_).take(bytes_.view());
  }

 private:
  json::Text bytes_;
  json::Reader reader_;
};

}  // namespace bridge
