#pragma once

#include <cstddef>
#include <optional>

#include "common/bytes.h"
#include "json/reader.h"

namespace bridge {

/// The application's reply to one request. It is read as JSON while its bytes arrive.
class Reply {
 public:
  /// A reply has at most this many bytes; the rest is never received.
  static constexpr std::size_t mostBytes = 4194304;

  [[nodiscard]] std::size_t left() const { return mostBytes - size(); }

  /// Room for `count` more bytes. Write there, then call received().
  char* room(std::size_t count) { return bytes_.room(count); }
  void received(std::size_t count) {
    bytes_.commit(count);
    reader_.read(bytes_.view());
  }

  [[nodiscard]] std::size_t size() const { return bytes_.size(); }
  [[nodiscard]] bool isEmpty() const { return size() == 0; }

  /// Whether the bytes so far are one whole JSON message.
  [[nodiscard]] bool isWhole() const { return reader_.state() == json::Reader::State::complete; }

  /// The message; none if the bytes are not one. Points into this reply, which must outlive it but
  /// may be moved. Call it once.
  std::optional<json::Document> document() {
    reader_.read(bytes_.view());  // room() may have moved the bytes
    if (!isWhole()) return std::nullopt;
    return std::move(reader_).take();
  }

 private:
  common::Bytes bytes_;
  json::Reader reader_;
};

}  // namespace bridge
