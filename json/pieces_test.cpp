#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "json/reader.h"
#include "json/writer.h"

// A message may arrive in any pieces: the result is that of the whole message.

namespace json {
namespace {

/// The result of reading a text: its state, and both texts written if it is complete.
struct Result {
  Reader::State state;
  std::string compact;
  std::string pretty;
  bool operator==(const Result&) const = default;
};

/// Reads the text up to each of the places, then to its end, each time from other memory of exactly
/// that size.
Result readInPieces(const std::string& text, const std::vector<std::size_t>& places) {
  Reader reader;
  for (const std::size_t place : places) {
    const std::vector<char> piece(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place));
    reader.read({piece.data(), piece.size()});
  }
  Result result{.state = reader.read(text), .compact = {}, .pretty = {}};
  if (result.state != Reader::State::complete) return result;
  const Document document = std::move(reader).take();
  common::Bytes compact;
  common::Bytes pretty;
  appendCompact(compact, document.root());
  appendPrettyQuoted(pretty, document.root());
  result.compact = compact.view();
  result.pretty = pretty.view();
  return result;
}

/// Messages that have everything in which a cut can fall, well-formed and malformed. All have at
/// most 64 bytes.
const std::vector<std::string> messages = {
    R"({"a":[1,-2.5e+10,true,false,null],"b":{"c":"d"},"e":[]} )",
    "\xEF\xBB\xBF [ \"\\u00e9\\n\\\"\\\\\\/\" , \"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\" ]\r\n",
    R"(["\ud83d\ude00","\ud800","\ud800\ud83d\ude00","\udc00x"])",
    R"({"name":"a value that is longer than two blocks of 16 bytes"})",
    R"([[[[[[{"":{"":[[]]}}]]]]]])",
    R"([0,-0,0.0,1e5,1E-5,10.25,123456789012345678901234567890])",
    R"(["\u00g0"])",
    R"([01])",
    R"({"a":tru})",
    R"(["a"]])",
    "[\"\xC3\x28\"]",
    "[\"\x01\"]",
    R"({"a" 1})",
};

TEST(Pieces, EveryCutIntoTwoGivesTheResultOfTheWholeMessage) {
  for (const std::string& message : messages) {
    ASSERT_LE(message.size(), 64U) << message;
    const Result whole = readInPieces(message, {});
    for (std::size_t place = 0; place <= message.size(); ++place) {
      ASSERT_EQ(readInPieces(message, {place}), whole) << message << " cut at " << place;
    }
  }
}

TEST(Pieces, EveryCutIntoThreeGivesTheResultOfTheWholeMessage) {
  for (const std::string& message : messages) {
    const Result whole = readInPieces(message, {});
    for (std::size_t first = 0; first <= message.size(); ++first) {
      for (std::size_t second = first; second <= message.size(); ++second) {
        ASSERT_EQ(readInPieces(message, {first, second}), whole)
            << message << " cut at " << first << " and " << second;
      }
    }
  }
}

TEST(Pieces, SingleBytesGiveTheResultOfTheWholeMessage) {
  for (const std::string& message : messages) {
    std::vector<std::size_t> places(message.size());
    for (std::size_t i = 0; i < places.size(); ++i) places[i] = i;
    ASSERT_EQ(readInPieces(message, places), readInPieces(message, {})) << message;
  }
}

// PrintTo keeps GoogleTest from printing the bytes of the struct.
void PrintTo(const Result& result, std::ostream* out) {
  *out << static_cast<int>(result.state) << ' ' << result.compact << ' ' << result.pretty;
}

}  // namespace
}  // namespace json
