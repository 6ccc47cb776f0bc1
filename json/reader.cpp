#include "json/reader.h"

#include <algorithm>
#include <utility>

#include "json/escape.h"
#include "json/scan.h"
#include "json/utf8.h"

namespace json {

std::optional<Document> read(std::string_view text) {
  Reader reader;
  if (reader.read(text) != Reader::State::complete) return std::nullopt;
  return std::move(reader).take(text);
}

Reader::State Reader::read(std::string_view text) {
  if (state_ == State::malformed) return state_;
  begin_ = text.data();
  end_ = begin_ + text.size();
  at_ = begin_ + offset_;
  Step outcome = Step::on;
  while (outcome == Step::on) outcome = step();
  offset_ = offset();
  if (outcome == Step::wrong) {
    state_ = State::malformed;
  } else if (next_ == Next::nothing) {
    state_ = State::complete;
  }
  return state_;
}

Reader::Step Reader::step() {
  switch (next_) {
    case Next::byteOrderMark: return readByteOrderMark();
    case Next::insideName: return readString(Next::colon);
    case Next::insideString: return readString(Next::commaOrEnd);
    case Next::insideNumber: return readNumber();
    default: break;
  }
  if (!skipWhiteSpace()) return Step::wait;
  const char first = *at_;
  switch (next_) {
    case Next::topLevel: return first == '{' || first == '[' ? readValue(first) : Step::wrong;
    case Next::firstElement: return first == ']' ? closeContainer() : readValue(first);
    case Next::value: return readValue(first);
    case Next::firstName: return first == '}' ? closeContainer() : readName(first);
    case Next::name: return readName(first);
    case Next::colon:
      if (first != ':') return Step::wrong;
      ++at_;
      next_ = Next::value;
      return Step::on;
    case Next::commaOrEnd: return readCommaOrEnd(first);
    default: return Step::wrong;  // something behind the message's end
  }
}

bool Reader::skipWhiteSpace() {
  while (at_ != end_ && (*at_ == ' ' || *at_ == '\n' || *at_ == '\r' || *at_ == '\t')) ++at_;
  return at_ != end_;
}

Reader::Step Reader::readByteOrderMark() {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  const std::string_view start(at_, static_cast<std::size_t>(end_ - at_));
  if (start.size() < mark.size() && mark.starts_with(start)) return Step::wait;
  if (start.starts_with(mark)) at_ += mark.size();
  next_ = Next::topLevel;
  return Step::on;
}

Reader::Step Reader::readValue(char first) {
  switch (first) {
    case '{': return openContainer(Kind::object);
    case '[': return openContainer(Kind::array);
    case '"': beginString(Next::insideString); return Step::on;
    case 't': return readLiteral(Kind::trueLiteral, "true");
    case 'f': return readLiteral(Kind::falseLiteral, "false");
    case 'n': return readLiteral(Kind::null, "null");
    default:
      addNode(Kind::number);
      number_ = NumberScan();
      next_ = Next::insideNumber;
      return Step::on;
  }
}

Reader::Step Reader::readName(char first) {
  if (first != '"') return Step::wrong;
  beginString(Next::insideName);
  return Step::on;
}

Reader::Step Reader::readCommaOrEnd(char first) {
  const bool inObject = nodes_[open_[depth_ - 1]].kind() == Kind::object;
  if (first == (inObject ? '}' : ']')) return closeContainer();
  if (first != ',') return Step::wrong;
  ++at_;
  next_ = inObject ? Next::name : Next::value;
  return Step::on;
}

void Reader::beginString(Next inside) {
  ++at_;
  addNode(Kind::string);
  clean_ = true;
  next_ = inside;
}

Reader::Step Reader::readString(Next after) {
  at_ = scan<StopAt::anythingUnusual>(at_, end_);
  if (at_ == end_) return Step::wait;
  if (*at_ != '"') return readUnusual();
  Node& string = lastNode();
  string.setExtent(offset() - string.begin());
  if (clean_) string.setClean();
  ++at_;
  next_ = after;
  return Step::on;
}

Reader::Step Reader::readUnusual() {
  switch (*at_) {
    case '/':
      clean_ = false;
      ++at_;
      return Step::on;
    case '\\': clean_ = false; return readEscape();
    default: break;
  }
  while (at_ != end_ && static_cast<unsigned char>(*at_) >= 0x80) {
    const Utf8Sequence sequence = utf8Sequence(at_, end_);
    if (sequence.state == Utf8Sequence::State::cutShort) return Step::wait;
    if (sequence.state == Utf8Sequence::State::illFormed) return Step::wrong;
    at_ += sequence.length;
  }
  const bool controlCharacter = at_ != end_ && static_cast<unsigned char>(*at_) < 0x20;
  return controlCharacter ? Step::wrong : Step::on;
}

Reader::Step Reader::readEscape() {
  constexpr std::string_view shortForms = "\"\\/bfnrt";
  constexpr std::ptrdiff_t unicodeLength = 6;  // \uXXXX
  const std::ptrdiff_t present = end_ - at_;
  if (present < 2) return Step::wait;
  if (at_[1] != 'u') {
    if (shortForms.find(at_[1]) == std::string_view::npos) return Step::wrong;
    at_ += 2;
    return Step::on;
  }
  for (std::ptrdiff_t i = 2; i < std::min(present, unicodeLength); ++i) {
    if (hexValue(at_[i]) < 0) return Step::wrong;
  }
  if (present < unicodeLength) return Step::wait;
  at_ += unicodeLength;
  return Step::on;
}

Reader::Step Reader::readNumber() {
  at_ = number_.read(at_, end_);
  if (at_ == end_) return Step::wait;
  if (!number_.isNumber()) return Step::wrong;
  Node& number = lastNode();
  number.setExtent(offset() - number.begin());
  next_ = Next::commaOrEnd;
  return Step::on;
}

Reader::Step Reader::readLiteral(Kind kind, std::string_view spelling) {
  const std::string_view rest(at_, static_cast<std::size_t>(end_ - at_));
  if (rest.size() < spelling.size()) return spelling.starts_with(rest) ? Step::wait : Step::wrong;
  if (!rest.starts_with(spelling)) return Step::wrong;
  addNode(kind);
  lastNode().setExtent(spelling.size());
  at_ += spelling.size();
  next_ = Next::commaOrEnd;
  return Step::on;
}

Reader::Step Reader::openContainer(Kind kind) {
  if (depth_ == deepestNesting) return Step::wrong;
  open_[depth_++] = nodes_.size();
  addNode(kind);
  ++at_;
  next_ = kind == Kind::object ? Next::firstName : Next::firstElement;
  return Step::on;
}

Reader::Step Reader::closeContainer() {
  const std::size_t container = open_[--depth_];
  nodes_[container].setExtent(nodes_.size() - container - 1);
  ++at_;
  next_ = depth_ == 0 ? Next::nothing : Next::commaOrEnd;
  return Step::on;
}

}  // namespace json
