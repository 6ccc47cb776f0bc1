#include "json/layout.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#include "json/escape.h"
#include "json/members.h"
#include "json/scan.h"
#include "json/spelling.h"

namespace json {
namespace {

/// Everything on one line.
struct Compact : Plain {
  static constexpr auto order = MemberStack::Order::asGiven;
  static constexpr std::string_view colon = ":";
  static constexpr bool breaksLines = false;
  static constexpr bool respellsEveryEscape = false;
  static constexpr std::size_t usualSize(std::size_t given) { return given + given / 16; }
};

/// A line for each member and element.
struct PrettyQuoted : Quoted {
  static constexpr auto order = MemberStack::Order::byName;
  static constexpr std::string_view colon = " : ";
  static constexpr bool breaksLines = true;
  static constexpr bool respellsEveryEscape = true;
  static constexpr std::size_t usualSize(std::size_t given) { return 2 * given; }
};

/// The end of a text that is being written. The place where the next byte goes is handed from
/// function to function rather than kept, so that it stays in a register.
class Sink {
 public:
  explicit Sink(Text& out) : out_(out), begin_(out.room(0)), limit_(begin_) {}

  [[nodiscard]] char* begin() const { return begin_; }

  /// Makes sure of room for `size` bytes at `to`, which may move.
  char* reserve(char* to, std::size_t size) {
    return static_cast<std::size_t>(limit_ - to) < size ? grow(to, size) : to;
  }

  /// Takes everything up to `to` into the text.
  void finish(char* to) { out_.commit(static_cast<std::size_t>(to - begin_)); }

 private:
  char* grow(char* to, std::size_t size) {
    finish(to);
    begin_ = out_.room(std::max(size, leastRoom));
    limit_ = begin_ + (out_.capacity() - out_.size());
    return begin_;
  }

  static constexpr std::size_t leastRoom = 256;
  Text& out_;
  char* begin_;
  char* limit_;
};

char* put(char* to, std::string_view bytes) {
  std::memcpy(to, bytes.data(), bytes.size());
  return to + bytes.size();
}

/// Writes a value and all that is inside it. Recursion is as deep as the value, which the
/// reader has bounded.
///
/// Most names and values are short. Room for a whole short member is made sure of once, before
/// it is begun; only what turns out to be longer asks again.
template <typename Style>
class Layout {
 public:
  /// `text` is the message whose values are laid out.
  Layout(Text& out, std::string_view text)
      : sink_(out), text_(text.data()), textEnd_(text.data() + text.size()), members_(text) {}

  void append(const Node* value) {
    const std::size_t usual = Style::usualSize(sizeOf(value));
    sink_.finish(append(value, 0, sink_.reserve(sink_.begin(), usual + roomForMember)));
  }

 private:
  static constexpr std::size_t indent = 2;
  /// What is short: a token of at most this many bytes, which can be copied without a loop.
  static constexpr std::size_t shortToken = 2 * blockSize;
  /// Enough for a short member with its punctuation, the blanks before it not counted, and
  /// for the copying of whole blocks.
  static constexpr std::size_t roomForMember = 2 * shortToken + 64;
  static constexpr std::size_t roomForValue = shortToken + 32;

  /// Bytes from a value's first token to its last.
  static std::size_t sizeOf(const Node* value) {
    const Node* const last = value->next() - 1;
    return last->begin() - value->begin() + (last->isContainer() ? 1 : last->extent());
  }

  /// There is roomForValue at `to`, here and in what follows.
  char* append(const Node* value, std::size_t level, char* to) {
    switch (value->kind()) {
      case Kind::string: return appendString(value, to);
      case Kind::object: return appendObject(value, level, to);
      case Kind::array: return appendArray(value, level, to);
      default: return appendLiteral(value, to);
    }
  }

  char* appendObject(const Node* object, std::size_t level, char* to) {
    const std::size_t first = members_.enter(object, Style::order);
    const std::size_t end = members_.size();
    to = put(to, "{");
    for (std::size_t i = first; i < end; ++i) {
      const Node* const name = members_[i].name;
      to = startItem(i == first, level, to);
      to = appendString(name, to);
      to = put(to, Style::colon);
      to = append(name + 1, level + 1, to);
    }
    members_.leave(first);
    return put(finishItems(first == end, level, to), "}");
  }

  char* appendArray(const Node* array, std::size_t level, char* to) {
    const Node* const first = array + 1;
    const Node* const end = array->next();
    to = put(to, "[");
    for (const Node* element = first; element != end; element = element->next()) {
      to = startItem(element == first, level, to);
      to = append(element, level + 1, to);
    }
    return put(finishItems(first == end, level, to), "]");
  }

  char* startItem(bool isFirst, std::size_t level, char* to) {
    to = sink_.reserve(to, roomForMember + indent * (level + 1));
    if (!isFirst) to = put(to, ",");
    return breakLine(level + 1, to);
  }

  char* finishItems(bool isEmpty, std::size_t level, char* to) {
    to = sink_.reserve(to, roomForMember + indent * level);
    return isEmpty ? to : breakLine(level, to);
  }

  static char* breakLine(std::size_t level, char* to) {
    if constexpr (Style::breaksLines) {
      constexpr std::string_view blanks = "                ";
      to = put(to, Style::newLine);
      char* const behind = to + indent * level;
      while (to < behind) to = put(to, blanks);
      return behind;
    }
    return to;
  }

  char* appendLiteral(const Node* literal, char* to) {
    const char* const from = text_ + literal->begin();
    const std::size_t size = literal->extent();
    if (size > shortToken) to = sink_.reserve(to, size + roomForValue);
    return copyShort(from, size, textEnd_, to);
  }

  char* appendString(const Node* string, char* to) {
    const char* const from = text_ + string->begin();
    const std::size_t size = string->extent();
    to = put(to, Style::quote);
    if (size <= shortToken && textEnd_ - from >= std::ptrdiff_t{shortToken}) {
      storeBlock(to, loadBlock(from));
      storeBlock(to + blockSize, loadBlock(from + blockSize));
      if (cleanBytesIn2<StopAt::respelled>(from) >= static_cast<std::ptrdiff_t>(size)) {
        return put(to + size, Style::quote);
      }
    }
    return put(respellAll(from, from + size, to), Style::quote);
  }

  /// Piece by piece, so that only little room is taken that may turn out not to be needed.
  char* respellAll(const char* from, const char* end, char* to) {
    constexpr std::ptrdiff_t piece = 16384;
    constexpr std::size_t mostForOne = 4;  // a slash can become four bytes
    while (from != end) {
      const std::ptrdiff_t size = std::min(piece, end - from);
      to = sink_.reserve(to, mostForOne * static_cast<std::size_t>(size) + roomForMember);
      const Copied copied = respell(from, from + size, end, to);
      from = copied.from;
      to = copied.to;
    }
    return to;
  }

  /// Copies a string from `from` to `stop`, or a little further if an escape crosses it.
  /// Escapes may be written in more than one way: here each gets the writer's.
  Copied respell(const char* from, const char* stop, const char* end, char* to) const {
    Copied done{from, to};
    while (done.from < stop && textEnd_ - done.from >= 64 + blockSize) {
      done = respell64(done.from, std::min(std::ptrdiff_t{64}, stop - done.from), end, done.to);
    }
    while (done.from < stop) {
      done = copyScan<StopAt::respelled>(done.from, stop, textEnd_, done.to);
      if (done.from != stop) done = respellOne(done.from, end, done.to);
    }
    return done;
  }

  /// The same for at most 64 bytes. To take what is respelled from one mask leaves the
  /// processor little to guess.
  Copied respell64(const char* from, std::ptrdiff_t size, const char* end, char* to) const {
    const char* const block = from;
    std::uint64_t stops = respelledIn64(block, size);
    while (stops != 0) {
      const char* const next = block + std::countr_zero(stops);
      to = copyShort(from, static_cast<std::size_t>(next - from), textEnd_, to);
      const Copied done = respellOne(next, end, to);
      from = done.from;
      to = done.to;
      if (from - block >= size) return {from, to};
      stops &= ~std::uint64_t{0} << (from - block);
    }
    to = copyShort(from, static_cast<std::size_t>(block + size - from), textEnd_, to);
    return {block + size, to};
  }

  /// A bit for each of the `size` bytes at `from` that doesn't come out as it stands.
  static std::uint64_t respelledIn64(const char* from, std::ptrdiff_t size) {
    const std::uint64_t all = ~std::uint64_t{0} >> (64 - size);
    if constexpr (Style::respellsEveryEscape) return stopsIn64<StopAt::respelled>(from) & all;
    // Short escapes are already what the writer makes of them. Only one that crosses the end
    // counts, so that the next bytes don't begin in the middle of it.
    const std::uint64_t escapes = escapesAmong(equalIn64<'\\'>(from));
    const std::uint64_t slashes = equalIn64<'/'>(from) & ~(escapes << 1U);
    const std::uint64_t unicode = escapes & equalIn64<'u'>(from) >> 1U;
    return (slashes | unicode | (escapes & (all ^ all >> 1U))) & all;
  }

  /// A slash or an escape.
  static Copied respellOne(const char* from, const char* end, char* to) {
    if (*from == '/') return {from + 1, writeShortEscape<Style>(to, '/')};
    if (from[1] != 'u') return {from + 2, writeShortEscape<Style>(to, from[1])};
    const Escape escape = readEscape(from, end);
    return {from + escape.length, writeCharacter<Style>(to, escape.codePoint)};
  }

  Sink sink_;
  const char* text_;
  const char* textEnd_;
  MemberStack members_;
};

}  // namespace

void appendCompact(Text& out, Value value) {
  Layout<Compact>(out, value.text()).append(value.node());
}

void appendPrettyQuoted(Text& out, Value value) {
  out.append('"');
  Layout<PrettyQuoted>(out, value.text()).append(value.node());
  out.append('"');
}

void appendQuoted(Text& out, std::string_view characters) {
  const char* from = characters.data();
  const char* const end = from + characters.size();
  out.append('"');
  while (true) {
    const char* const stop = scan<StopAt::mustBeEscaped>(from, end);
    out.append({from, stop});
    if (stop == end) break;
    // All that is looked for is one byte long, save what 0xED begins.
    const std::ptrdiff_t length = *stop == '\xED' ? 3 : 1;
    char* const to = out.room(longestCharacter);
    out.commit(static_cast<std::size_t>(writeCharacter<Plain>(to, decodeUtf8(stop, length)) - to));
    from = stop + length;
  }
  out.append('"');
}

}  // namespace json
