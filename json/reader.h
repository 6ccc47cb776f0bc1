#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "json/node.h"
#include "json/number_scan.h"
#include "json/value.h"

namespace json {

/// Arrays and objects may stand inside one another this deep; deeper ones are malformed.
inline constexpr std::size_t deepestNesting = 512;

/// Reads one JSON message, which may arrive piece by piece, and checks every byte of it.
///
/// The top level must be an object or an array. White space and one byte order mark may stand
/// before it, and white space behind it. Strings must be well-formed UTF-8; the escape of an
/// unpaired surrogate is let through, as agents' hosts do send it.
///
/// Each byte is looked at once, however many pieces it comes in, and no input takes more
/// stack than another. Not for use by two threads at once.
class Reader {
 public:
  enum class State : std::uint8_t {
    incomplete,  ///< well-formed so far
    complete,    ///< a whole message, with nothing but white space behind it
    malformed    ///< no further text can mend it
  };

  /// Reads on. `text` is the message so far, from its first byte: it begins with all that
  /// earlier calls were given, though it may have moved.
  State read(std::string_view text);

  [[nodiscard]] State state() const { return state_; }

  /// Hands over what was read of `text`, the text that the last call of read() was given.
  /// To be called at most once, and only when the state is complete.
  Document take(std::string_view text) && { return {text, std::move(nodes_)}; }

 private:
  /// What may come next.
  enum class Next : std::uint8_t {
    byteOrderMark,
    topLevel,
    firstElement,  // or the end of the array
    firstName,     // or the end of the object
    name,
    colon,
    value,
    commaOrEnd,
    insideName,
    insideString,
    insideNumber,
    nothing
  };
  /// How a step ended: go on with the next, wait for more text, or give up.
  enum class Step : std::uint8_t { on, wait, wrong };

  // `at` is the first byte not read yet; steps move it on.
  Step step(const char*& at);
  Step readByteOrderMark(const char*& at);
  Step readValue(const char*& at);
  Step readMembers(const char*& at);
  bool readExpectedName(const char*& at);
  Step beginName(const char*& at);
  Step readName(const char*& at);
  Step readColon(const char*& at);
  Step readCommaOrEnd(const char*& at);
  void beginString(const char*& at, Next inside);
  Step readString(const char*& at);
  Step readCharacters(const char*& at);
  bool skipShort(const char*& at) const;
  Step readUpToQuote(const char*& at);
  Step readManyCharacters(const char*& at);
  Step readUnusual(const char*& at);
  Step readEscape(const char*& at);
  Step readNonAscii(const char*& at);
  Step readNumber(const char*& at);
  Step readLiteral(const char*& at, Kind kind, std::string_view spelling);
  Step openContainer(const char*& at, Kind kind);
  Step closeContainer(const char*& at);

  void expectNamesOfTheOneBefore();
  void addNode(Kind kind, const char* at);
  void endToken(const char* at);
  [[nodiscard]] std::size_t offsetOf(const char* at) const {
    return static_cast<std::size_t>(at - begin_);
  }

  const char* begin_ = nullptr;  // the text of the current call
  const char* end_ = nullptr;
  std::size_t offset_ = 0;  // of the first byte not read yet, from one call to the next

  /// An array or object that has begun. Nodes are given by their indices.
  struct Open {
    std::size_t container;
    std::size_t expectedName;  // the next name, in the object directly before this one
  };
  static constexpr std::size_t none = ~std::size_t{0};

  Buffer<Node> nodes_;
  std::array<Open, deepestNesting> open_;  // all that is around
  std::size_t closedObject_ = none;        // what ended last, if it was an object
  std::size_t depth_ = 0;
  NumberScan number_;
  bool clean_ = true;      // the string being read, so far
  bool inObject_ = false;  // the innermost open container is one
  Next next_ = Next::byteOrderMark;
  State state_ = State::incomplete;
};

/// Reads a whole message; none if it is not one. `text` must outlive the result.
std::optional<Document> read(std::string_view text);

}  // namespace json
