#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "common/buffer.h"
#include "json/node.h"
#include "json/value.h"

namespace json {

/// Arrays and objects may be nested this deep; deeper ones are malformed.
inline constexpr std::size_t deepestNesting = 512;

/// Reads one JSON message, which may arrive in pieces, and checks every byte of it.
///
///     json::Reader reader;
///     while (reader.read(bytes.view()) == json::Reader::State::incomplete) receiveMore(bytes);
///     if (reader.state() == json::Reader::State::complete) {
///       const json::Document document = std::move(reader).take();  // points into `bytes`
///       use(document.root());
///     }
///
/// The top level must be an object or an array. White space and one byte order mark may precede
/// it, and white space may follow. Strings must be well-formed UTF-8. Escapes of unpaired
/// surrogates are accepted, because agent hosts send them.
///
/// Each byte is examined a bounded number of times, however many pieces there are, and the stack
/// depth does not depend on the input. Not thread-safe.
class Reader {
 public:
  enum class State : std::uint8_t {
    incomplete,  ///< well-formed so far
    complete,    ///< a whole message, with nothing but white space after it
    malformed    ///< no further text can complete it
  };

  /// Continues with `text`: everything that has arrived, from the message's first byte. The text of
  /// the previous call must be the start of it, but may have moved in memory.
  State read(std::string_view text);

  [[nodiscard]] State state() const { return state_; }

  /// The message. It points into the text of the last call of read(), which must outlive it. Call
  /// it once, when the state is complete.
  Document take() && { return {text_, std::move(nodes_)}; }

 private:
  class Steps;
  enum class Next : std::uint8_t;

  std::string_view text_;
  std::size_t offset_ = 0;  // of the first byte not read yet
  common::Buffer<Node> nodes_;
  std::size_t innermost_ = 0;  // index of the innermost open container
  std::size_t depth_ = 0;      // of open containers
  Next next_{};
  State state_ = State::incomplete;
};

/// Reads a whole message; none if it is malformed or incomplete. `text` must outlive the result.
std::optional<Document> read(std::string_view text);

}  // namespace json
