#include "json/reader.h"

#include <utility>

#include "json/read_string.h"
#include "json/scalar.h"

namespace json {

/// What is expected next.
enum class Reader::Next : std::uint8_t {
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
  insideScalar,
  nothing
};

/// One call of Reader::read(). Each step reads one token, or as much of it as is there.
class Reader::Steps {
 public:
  explicit Steps(Reader& reader)
      : reader_(reader),
        begin_(reader.text_.data()),
        end_(begin_ + reader.text_.size()),
        at_(begin_ + reader.offset_),
        next_(reader.next_) {}

  Progress run() {
    Progress progress = Progress::done;
    while (progress == Progress::done) progress = step();
    reader_.offset_ = offset();
    reader_.next_ = next_;
    return progress;
  }

 private:
  static bool isWhiteSpace(char c) {
    return c <= ' ' && (c == ' ' || c == '\n' || c == '\r' || c == '\t');
  }

  Progress step() {
    switch (next_) {
      case Next::insideName: return readCharacters(Next::colon);
      case Next::insideString: return readCharacters(Next::commaOrEnd);
      case Next::insideScalar: return readScalar();
      case Next::byteOrderMark: return readByteOrderMark();
      default: break;
    }
    while (at_ != end_ && isWhiteSpace(*at_)) ++at_;
    if (at_ == end_) return Progress::cutShort;
    switch (next_) {
      case Next::value: return readValue();
      case Next::commaOrEnd: return readCommaOrEnd();
      case Next::name: return beginName();
      case Next::firstName: return *at_ == '}' ? closeContainer() : beginName();
      case Next::firstElement: return *at_ == ']' ? closeContainer() : readValue();
      case Next::colon: return readColon();
      case Next::topLevel: return *at_ == '{' || *at_ == '[' ? readValue() : Progress::malformed;
      default: return Progress::malformed;  // something after the end of the message
    }
  }

  Progress readByteOrderMark() {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    const std::string_view start(at_, end_);
    if (start.size() < mark.size() && mark.starts_with(start)) return Progress::cutShort;
    if (start.starts_with(mark)) at_ += mark.size();
    return expect(Next::topLevel);
  }

  Progress readValue() {
    switch (*at_) {
      case '"': return beginString(Next::insideString, Next::commaOrEnd);
      case '{': return openContainer(Kind::object, Next::firstName);
      case '[': return openContainer(Kind::array, Next::firstElement);
      default: return beginScalar();
    }
  }

  Progress beginName() {
    return *at_ == '"' ? beginString(Next::insideName, Next::colon) : Progress::malformed;
  }

  Progress beginString(Next inside, Next after) {
    ++at_;
    addNode(Kind::string);
    next_ = inside;
    return readCharacters(after);
  }

  /// Reads up to the closing quote and moves past it.
  Progress readCharacters(Next after) {
    bool hasEscapes = false;
    const Progress progress = skipToQuote(at_, end_, hasEscapes);
    if (hasEscapes) reader_.nodes_.last().setHasEscapes();
    if (progress != Progress::done) return progress;
    endToken();
    ++at_;
    return expect(after);
  }

  Progress readColon() {
    if (*at_ != ':') return Progress::malformed;
    ++at_;
    return expect(Next::value);
  }

  Progress readCommaOrEnd() {
    const bool inObject = innermost().kind() == Kind::object;
    if (*at_ == (inObject ? '}' : ']')) return closeContainer();
    if (*at_ != ',') return Progress::malformed;
    ++at_;
    return expect(inObject ? Next::name : Next::value);
  }

  Progress beginScalar() {
    addNode(Kind::number);
    next_ = Next::insideScalar;
    return readScalar();
  }

  Progress readScalar() {
    at_ = skipScalar(at_, end_);
    if (at_ == end_) return Progress::cutShort;
    Node& node = reader_.nodes_.last();
    const auto kind = scalarKind({begin_ + node.begin(), at_});
    if (!kind) return Progress::malformed;
    node = Node(*kind, node.begin());
    endToken();
    return expect(Next::commaOrEnd);
  }

  Progress openContainer(Kind kind, Next next) {
    if (reader_.depth_++ == deepestNesting) return Progress::malformed;
    addNode(kind);
    // Until it is closed, its count is the index of the container around it.
    reader_.nodes_.last().setDescendants(reader_.innermost_);
    reader_.innermost_ = reader_.nodes_.size() - 1;
    ++at_;
    return expect(next);
  }

  Progress closeContainer() {
    const std::size_t index = std::exchange(reader_.innermost_, innermost().descendants());
    reader_.nodes_[index].setDescendants(reader_.nodes_.size() - index - 1);
    ++at_;
    return expect(--reader_.depth_ == 0 ? Next::nothing : Next::commaOrEnd);
  }

  Progress expect(Next next) {
    next_ = next;
    return Progress::done;
  }

  void addNode(Kind kind) { reader_.nodes_.push(Node(kind, offset())); }
  void endToken() {
    Node& node = reader_.nodes_.last();
    node.setLength(offset() - node.begin());
  }

  [[nodiscard]] const Node& innermost() const { return reader_.nodes_[reader_.innermost_]; }
  [[nodiscard]] std::size_t offset() const { return static_cast<std::size_t>(at_ - begin_); }

  Reader& reader_;
  const char* begin_;
  const char* end_;
  const char* at_;  // the first byte not read yet
  Next next_;
};

// With every step inlined here, the position stays in a register. A call whose reply is a listing
// takes 6 % less time.
[[gnu::flatten]] Reader::State Reader::read(std::string_view text) {
  if (state_ == State::malformed) return state_;
  text_ = text;
  const Progress progress = Steps(*this).run();
  if (progress == Progress::malformed) {
    state_ = State::malformed;
  } else if (next_ == Next::nothing) {
    state_ = State::complete;
  }
  return state_;
}

std::optional<Document> read(std::string_view text) {
  Reader reader;
  if (reader.read(text) != Reader::State::complete) return std::nullopt;
  return std::move(reader).take();
}

}  // namespace json
