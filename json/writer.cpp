#include "json/writer.h"

#include <utf8.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "json/escape.h"
#include "json/node.h"
#include "json/room.h"
#include "json/scan.h"
#include "json/simd.h"
#include "json/sorted_members.h"
#include "json/string_writer.h"

namespace json {
namespace {

using common::Bytes;

/// Everything on one line.
struct Compact {
  static constexpr auto escaping = Escaping::once;
  static constexpr auto order = SortedMembers::Order::asGiven;
  static constexpr std::string_view quote = "\"";
  static constexpr std::string_view colon = ":";
  static constexpr bool breaksLines = false;
  static constexpr std::size_t expectedSize(std::size_t given) { return given + given / 16; }
};

/// A line for each member and element, as the content of a string.
struct PrettyQuoted {
  static constexpr auto escaping = Escaping::twice;
  static constexpr auto order = SortedMembers::Order::byName;
  static constexpr std::string_view quote = "\\\"";
  static constexpr std::string_view colon = " : ";
  static constexpr bool breaksLines = true;
  static constexpr std::size_t expectedSize(std::size_t given) { return 2 * given; }
};

/// Writes a value and everything inside it. It recurses as deep as the value is nested, which the
/// reader has limited.
///
/// Most names and values are short. Room for a short member is reserved once, before it starts;
/// only longer ones reserve again.
template <typename Style>
class Writer {
 public:
  /// `text` is the message that contains the values.
  Writer(Bytes& out, std::string_view text)
      : room_(out), text_(text.data()), textEnd_(text.data() + text.size()), members_(text) {}

  void append(const Node* value) {
    const std::size_t expected = Style::expectedSize(sizeOf(value));
    room_.commit(append(value, 0, room_.reserve(room_.begin(), expected + roomForMember)));
  }

 private:
  static constexpr std::size_t indent = 2;
  static constexpr std::ptrdiff_t shortToken = 2 * blockSize;
  /// Enough for a short name, a short value, and the punctuation.
  static constexpr std::size_t roomForMember = 2 * shortToken + 64;
  static constexpr std::size_t roomForValue = shortToken + 32;
  static constexpr std::size_t mostBytesPerByte = 4;  // a slash, escaped twice

  /// Bytes from the first to the last token of a value.
  static std::size_t sizeOf(const Node* value) {
    const Node* const last = value->next() - 1;
    return last->begin() - value->begin() + (last->isContainer() ? 1 : last->length());
  }

  /// Needs roomForValue at `to`, as the functions that it calls do.
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
      to = appendString(name, startItem(i == first, level, to));
      to = append(name + 1, level + 1, put(to, Style::colon));
    }
    members_.leave(first);
    return put(finishItems(first == end, level, to), "}");
  }

  char* appendArray(const Node* array, std::size_t level, char* to) {
    const Node* const first = array + 1;
    const Node* const end = array->next();
    to = put(to, "[");
    for (const Node* element = first; element != end; element = element->next()) {
      to = append(element, level + 1, startItem(element == first, level, to));
    }
    return put(finishItems(first == end, level, to), "]");
  }

  char* startItem(bool isFirst, std::size_t level, char* to) {
    to = room_.reserve(to, roomForMember + indent * (level + 1));
    if (!isFirst) to = put(to, ",");
    return breakLine(level + 1, to);
  }

  char* finishItems(bool isEmpty, std::size_t level, char* to) {
    to = room_.reserve(to, roomForMember + indent * level);
    return isEmpty ? to : breakLine(level, to);
  }

  static char* breakLine(std::size_t level, char* to) {
    if constexpr (Style::breaksLines) {
      constexpr std::string_view spaces = "                ";
      to = put(to, "\\n");
      char* const end = to + indent * level;
      while (to < end) to = put(to, spaces);
      return end;
    }
    return to;
  }

  char* appendLiteral(const Node* literal, char* to) {
    const std::string_view token(text_ + literal->begin(), literal->length());
    if (std::ssize(token) > shortToken) to = room_.reserve(to, token.size() + roomForValue);
    return put(to, token);
  }

  char* appendString(const Node* string, char* to) {
    const char* from = text_ + string->begin();
    const char* const end = from + string->length();
    to = put(to, Style::quote);
    if (copyPlain(from, end, to)) return put(to + (end - from), Style::quote);
    return appendLongString(from, end, to);
  }

  // With everything inlined, a call with a big argument takes 4 % less time.
  [[gnu::flatten]] char* appendLongString(const char* from, const char* end, char* to) {
    while (from != end) {
      to = room_.reserve(to, mostBytesPerByte * maskWidth + roomForMember);
      const std::ptrdiff_t size = std::min(maskWidth, end - from);
      const Copied copied = copyEscaped<Style::escaping>(from, size, end, textEnd_, to);
      from = copied.from;
      to = copied.to;
    }
    return put(to, Style::quote);
  }

  /// Copies a string that is short and needs no escaping. Otherwise returns false.
  bool copyPlain(const char* from, const char* end, char* to) const {
    if (end - from > shortToken || textEnd_ - from < shortToken) return false;
    const Block first = load(from);
    const Block second = load(from + blockSize);
    store(to, first);
    store(to + blockSize, second);
    const std::uint64_t stops = maskOf(isAnySlash(first)) | maskOf(isAnySlash(second)) << blockSize;
    return std::countr_zero(stops) >= end - from;
  }

  Room room_;
  const char* text_;
  const char* textEnd_;
  SortedMembers members_;
};

}  // namespace

void appendCompact(Bytes& out, Value value) {
  Writer<Compact>(out, value.text()).append(value.node());
}

void appendPrettyQuoted(Bytes& out, Value value) {
  out.append('"');
  Writer<PrettyQuoted>(out, value.text()).append(value.node());
  out.append('"');
}

void appendQuoted(Bytes& out, std::string_view text) {
  out.append('"');
  for (const char* at = text.data(); at != text.data() + text.size();) {
    char* const to = out.room(longestCharacter);
    char* const end = writeCharacter<Escaping::once>(to, utf8::unchecked::next(at));
    out.commit(static_cast<std::size_t>(end - to));
  }
  out.append('"');
}

}  // namespace json
