#include "json/reader.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "json/escape.h"
#include "json/scan.h"
#include "json/utf8.h"

namespace json {
namespace {

bool isWhiteSpace(char c) {
  return c <= ' ' && (c == ' ' || c == '\n' || c == '\r' || c == '\t');
}

std::string_view between(const char* from, const char* end) {
  return {from, end};
}

}  // namespace

std::optional<Document> read(std::string_view text) {
  Reader reader;
  if (reader.read(text) != Reader::State::complete) return std::nullopt;
  return std::move(reader).take(text);
}

// All steps are made part of this one function, so that the place in the text stays in a
// register: big listings are read twice as fast for it.
[[gnu::flatten]] Reader::State Reader::read(std::string_view text) {
  if (state_ == State::malformed) return state_;
  begin_ = text.data();
  end_ = begin_ + text.size();
  const char* at = begin_ + offset_;
  Step outcome = Step::on;
  while (outcome == Step::on) outcome = step(at);
  offset_ = offsetOf(at);
  if (outcome == Step::wrong) {
    state_ = State::malformed;
  } else if (next_ == Next::nothing) {
    state_ = State::complete;
  }
  return state_;
}

Reader::Step Reader::step(const char*& at) {
  switch (next_) {
    case Next::insideName: return readName(at);
    case Next::insideString: return readString(at);
    case Next::insideNumber: return readNumber(at);
    case Next::byteOrderMark: return readByteOrderMark(at);
    default: break;
  }
  while (at != end_ && isWhiteSpace(*at)) ++at;
  if (at == end_) return Step::wait;
  switch (next_) {
    case Next::value: return readValue(at);
    case Next::commaOrEnd: return readCommaOrEnd(at);
    case Next::name: return readMembers(at);
    case Next::firstName: return *at == '}' ? closeContainer(at) : readMembers(at);
    case Next::firstElement: return *at == ']' ? closeContainer(at) : readValue(at);
    case Next::colon: return readColon(at);
    case Next::topLevel: return *at == '{' || *at == '[' ? readValue(at) : Step::wrong;
    default: return Step::wrong;  // something behind the end of the message
  }
}

Reader::Step Reader::readByteOrderMark(const char*& at) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  const std::string_view start = between(at, end_);
  if (start.size() < mark.size() && mark.starts_with(start)) return Step::wait;
  if (start.starts_with(mark)) at += mark.size();
  next_ = Next::topLevel;
  return Step::on;
}

Reader::Step Reader::readValue(const char*& at) {
  switch (*at) {
    case '"': beginString(at, Next::insideString); return readString(at);
    case '{': return openContainer(at, Kind::object);
    case '[': return openContainer(at, Kind::array);
    case 't': return readLiteral(at, Kind::trueLiteral, "true");
    case 'f': return readLiteral(at, Kind::falseLiteral, "false");
    case 'n': return readLiteral(at, Kind::null, "null");
    default: break;
  }
  addNode(Kind::number, at);
  number_ = NumberScan();
  next_ = Next::insideNumber;
  return readNumber(at);
}

/// Goes through members as long as there is nothing unusual about them, as in nearly all
/// objects: no white space, no end of the text, nothing inside them.
Reader::Step Reader::readMembers(const char*& at) {
  while (true) {
    Step step = Step::on;
    if (!readExpectedName(at)) {
      step = beginName(at);
      if (step != Step::on || at == end_ || *at != ':') return step;
      readColon(at);
    }
    if (at == end_ || isWhiteSpace(*at)) return step;
    step = readValue(at);
    if (step != Step::on || next_ != Next::commaOrEnd || end_ - at < 2) return step;
    if (at[0] != ',' || at[1] != '"') return step;
    ++at;
  }
}

/// Goes past a name and its colon if the object directly before has the same ones here. In a
/// listing nearly all are found that way, with nothing for the processor to wait for.
bool Reader::readExpectedName(const char*& at) {
  const std::size_t expected = std::exchange(open_[depth_ - 1].expectedName, none);
  if (expected >= open_[depth_ - 1].container || end_ - at < blockSize) return false;
  const Node name = nodes_[expected];
  const auto size = static_cast<std::ptrdiff_t>(name.extent()) + 3;  // its quotes and the colon
  const Block awaited = loadBlock(begin_ + name.begin() - 1);
  if (!name.isClean() || unmarkedBefore(differing(loadBlock(at), awaited)) < size) return false;
  if (at[size - 1] != ':') return false;
  nodes_.push(name.at(offsetOf(at) + 1));
  at += size;
  next_ = Next::value;
  open_[depth_ - 1].expectedName = expected + 1 + nodes_[expected + 1].span();
  return true;
}

Reader::Step Reader::beginName(const char*& at) {
  if (*at != '"') return Step::wrong;
  beginString(at, Next::insideName);
  return readName(at);
}

Reader::Step Reader::readName(const char*& at) {
  const Step step = readCharacters(at);
  if (step == Step::on) next_ = Next::colon;
  return step;
}

Reader::Step Reader::readColon(const char*& at) {
  if (*at != ':') return Step::wrong;
  ++at;
  next_ = Next::value;
  return Step::on;
}

Reader::Step Reader::readCommaOrEnd(const char*& at) {
  if (*at == (inObject_ ? '}' : ']')) return closeContainer(at);
  if (*at != ',') return Step::wrong;
  ++at;
  next_ = inObject_ ? Next::name : Next::value;
  return Step::on;
}

void Reader::beginString(const char*& at, Next inside) {
  ++at;
  addNode(Kind::string, at);
  clean_ = true;
  next_ = inside;
}

Reader::Step Reader::readString(const char*& at) {
  const Step step = readCharacters(at);
  if (step == Step::on) next_ = Next::commaOrEnd;
  return step;
}

/// Up to and past the closing quote.
Reader::Step Reader::readCharacters(const char*& at) {
  const Step step = skipShort(at) ? Step::on : readUpToQuote(at);
  if (step != Step::on) return step;
  endToken(at);
  if (clean_) nodes_.last().setClean();
  ++at;
  return Step::on;
}

/// Goes to the closing quote if it is in the next two blocks, with nothing unusual before it.
bool Reader::skipShort(const char*& at) const {
  constexpr std::ptrdiff_t both = 2 * blockSize;
  if (end_ - at < both) return false;
  const std::ptrdiff_t clean = cleanBytesIn2<StopAt::unusual>(at);
  if (clean == both || at[clean] != '"') return false;
  at += clean;
  return true;
}

Reader::Step Reader::readUpToQuote(const char*& at) {
  Step step = readManyCharacters(at);
  while (step == Step::on) {
    at = scan<StopAt::unusual>(at, end_);
    if (at == end_) return Step::wait;
    if (*at == '"') return Step::on;
    step = readUnusual(at);
  }
  return step;
}

/// Up to the closing quote or near the end of the text. In long strings what is unusual stands
/// anywhere; to take it from one mask for 64 bytes leaves the processor little to guess.
Reader::Step Reader::readManyCharacters(const char*& at) {
  constexpr std::ptrdiff_t width = 64;
  while (end_ - at >= width) {
    const char* const block = at;
    std::uint64_t stops = stopsIn64<StopAt::unusual>(block);
    while (stops != 0) {
      at = block + std::countr_zero(stops);
      if (*at == '"') return Step::on;
      const Step step = readUnusual(at);
      if (step != Step::on) return step;
      const std::ptrdiff_t done = at - block;
      stops = done < width ? stops & ~std::uint64_t{0} << done : 0;
    }
    at = std::max(at, block + width);
  }
  return Step::on;
}

Reader::Step Reader::readUnusual(const char*& at) {
  return *at == '\\' ? readEscape(at) : readNonAscii(at);
}

Reader::Step Reader::readEscape(const char*& at) {
  constexpr std::ptrdiff_t unicodeLength = 6;  // \uXXXX
  clean_ = false;
  const std::ptrdiff_t present = end_ - at;
  if (present < 2) return Step::wait;
  if (isShortEscape(at[1])) {
    at += 2;
    return Step::on;
  }
  if (at[1] != 'u') return Step::wrong;
  for (std::ptrdiff_t i = 2; i < std::min(present, unicodeLength); ++i) {
    if (hexValue(at[i]) < 0) return Step::wrong;
  }
  if (present < unicodeLength) return Step::wait;
  at += unicodeLength;
  return Step::on;
}

Reader::Step Reader::readNonAscii(const char*& at) {
  using enum Utf8Sequence::State;
  const Utf8Sequence sequence = utf8Sequence(at, end_);
  if (sequence.state == cutShort) return Step::wait;
  if (sequence.state == illFormed) return Step::wrong;  // a control character, too
  at += sequence.length;
  return Step::on;
}

Reader::Step Reader::readNumber(const char*& at) {
  at = number_.read(at, end_);
  if (at == end_) return Step::wait;
  if (!number_.isNumber()) return Step::wrong;
  endToken(at);
  next_ = Next::commaOrEnd;
  return Step::on;
}

Reader::Step Reader::readLiteral(const char*& at, Kind kind, std::string_view spelling) {
  const std::string_view rest = between(at, end_).substr(0, spelling.size());
  if (!spelling.starts_with(rest)) return Step::wrong;
  if (rest.size() < spelling.size()) return Step::wait;
  addNode(kind, at);
  at += spelling.size();
  endToken(at);
  next_ = Next::commaOrEnd;
  return Step::on;
}

Reader::Step Reader::openContainer(const char*& at, Kind kind) {
  if (depth_ == deepestNesting) return Step::wrong;
  open_[depth_++] = {.container = nodes_.size(), .expectedName = none};
  if (kind == Kind::object) expectNamesOfTheOneBefore();
  addNode(kind, at);
  ++at;
  inObject_ = kind == Kind::object;
  next_ = inObject_ ? Next::firstName : Next::firstElement;
  return Step::on;
}

Reader::Step Reader::closeContainer(const char*& at) {
  const auto [container, expectedName] = open_[--depth_];
  nodes_[container].setExtent(nodes_.size() - container - 1);
  if (expectedName == container) nodes_[container].setLikeTheOneBefore();
  closedObject_ = inObject_ ? container : none;
  ++at;
  next_ = depth_ == 0 ? Next::nothing : Next::commaOrEnd;
  inObject_ = depth_ > 0 && nodes_[open_[depth_ - 1].container].kind() == Kind::object;
  return Step::on;
}

/// If an object ended just before the one that begins now, and both stand in an array.
void Reader::expectNamesOfTheOneBefore() {
  if (closedObject_ == none || inObject_) return;
  if (closedObject_ + nodes_[closedObject_].span() != nodes_.size()) return;
  open_[depth_ - 1].expectedName = closedObject_ + 1;
}

void Reader::addNode(Kind kind, const char* at) {
  nodes_.push(Node(kind, offsetOf(at)));
}

void Reader::endToken(const char* at) {
  nodes_.last().setExtent(offsetOf(at) - nodes_.last().begin());
}

}  // namespace json
