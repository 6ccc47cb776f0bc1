#include "json/layout.h"

#include <cstddef>

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
  static void breakLine(Text& /*out*/, std::size_t /*level*/) {}
};

/// A line for each member and element.
struct PrettyQuoted : Quoted {
  static constexpr auto order = MemberStack::Order::byName;
  static constexpr std::string_view colon = " : ";
  static void breakLine(Text& out, std::size_t level) {
    out.append(newLine);
    const std::size_t blanks = 2 * level;
    std::memset(out.room(blanks), ' ', blanks);
    out.commit(blanks);
  }
};

/// Writes a value and all that is inside it. Recursion is as deep as the value, which the
/// reader has bounded.
template <typename Style>
class Layout {
 public:
  explicit Layout(Text& out) : out_(out) {}

  void append(Value value, std::size_t level = 0) {
    switch (value.kind()) {
      case Kind::object: return appendObject(value, level);
      case Kind::array: return appendArray(value, level);
      case Kind::string: return appendString(value);
      default: out_.append(value.token());
    }
  }

 private:
  void appendObject(Value object, std::size_t level) {
    out_.append('{');
    const std::size_t first = members_.enter(object, Style::order);
    const std::size_t end = members_.size();
    for (std::size_t i = first; i < end; ++i) {
      const Node* const key = members_[i].key;
      if (i > first) out_.append(',');
      Style::breakLine(out_, level + 1);
      appendString({object.text(), key});
      out_.append(Style::colon);
      append({object.text(), key + 1}, level + 1);
    }
    members_.leave(first);
    if (end > first) Style::breakLine(out_, level);
    out_.append('}');
  }

  void appendArray(Value array, std::size_t level) {
    out_.append('[');
    const Node* const first = array.node() + 1;
    const Node* const end = array.node()->next();
    for (const Node* element = first; element != end; element = element->next()) {
      if (element != first) out_.append(',');
      Style::breakLine(out_, level + 1);
      append({array.text(), element}, level + 1);
    }
    if (end != first) Style::breakLine(out_, level);
    out_.append(']');
  }

  void appendString(Value string) {
    const std::string_view token = string.token();
    out_.append(Style::quote);
    if (string.node()->isClean()) {
      out_.append(token);
    } else {
      appendRespelled(token.data(), token.data() + token.size());
    }
    out_.append(Style::quote);
  }

  /// Escapes may be written in more than one way; here each gets the writer's.
  void appendRespelled(const char* from, const char* end) {
    while (true) {
      const char* const stop = scan<StopAt::backslashOrSlash>(from, end);
      out_.append({from, stop});
      if (stop == end) return;
      const Escape escape = *stop == '/' ? Escape{'/', 1} : readEscape(stop, end);
      appendCharacter<Style>(out_, escape.codePoint);
      from = stop + escape.length;
    }
  }

  Text& out_;
  MemberStack members_;
};

}  // namespace

void appendCompact(Text& out, Value value) {
  Layout<Compact>(out).append(value);
}

void appendPrettyQuoted(Text& out, Value value) {
  out.append('"');
  Layout<PrettyQuoted>(out).append(value);
  out.append('"');
}

void appendQuoted(Text& out, std::string_view characters) {
  const char* from = characters.data();
  const char* const end = from + characters.size();
  out.append('"');
  while (true) {
    const char* const stop = scan<StopAt::whatMustBeEscaped>(from, end);
    out.append({from, stop});
    if (stop == end) break;
    // All that is looked for is one byte long, save what 0xED begins.
    const std::ptrdiff_t length = *stop == '\xED' ? 3 : 1;
    appendCharacter<Plain>(out, decodeUtf8(stop, length));
    from = stop + length;
  }
  out.append('"');
}

}  // namespace json
