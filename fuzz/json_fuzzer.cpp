// Reads and lays out a text, judged by another JSON library.
//
// Input: a byte that says how the text is cut into pieces, then the text.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/pieces.h"
#include "fuzz/require.h"
#include "json/reader.h"
#include "json/writer.h"
#include "tests/unit/reference.h"
#include "tests/unit/written.h"

namespace {

struct Reading {
  json::Reader::State state = json::Reader::State::incomplete;
  std::string compact;
  std::string pretty;  // quoted
  bool operator==(const Reading&) const = default;

  [[nodiscard]] bool isComplete() const { return state == json::Reader::State::complete; }
};

/// Reads a text that comes in pieces. Every time it is elsewhere in memory, and there is nothing
/// behind it, so that the sanitizer notices who reads on.
Reading readInPieces(std::string_view text, const std::vector<std::size_t>& ends) {
  json::Reader reader;
  Reading reading;
  std::vector<char> soFar;
  for (const std::size_t end : ends) {
    soFar = std::vector<char>(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end));
    reading.state = reader.read({soFar.data(), soFar.size()});
  }
  if (!reading.isComplete()) return reading;
  const json::Document document = std::move(reader).take();
  common::Bytes compact;
  common::Bytes pretty;
  json::appendCompact(compact, document.root());
  json::appendPrettyQuoted(pretty, document.root());
  reading.compact = compact.view();
  reading.pretty = pretty.view();
  return reading;
}

void requireFixedPoints(const Reading& reading) {
  const auto unquoted = nlohmann::json::parse(reading.pretty).get<std::string>();
  require(compact(reading.compact) == reading.compact, "the compact layout is a fixed point",
          reading.compact);
  require(prettyQuoted(unquoted) == reading.pretty, "the pretty layout is a fixed point",
          reading.pretty);
  require(prettyQuoted(reading.compact) == reading.pretty, "one layout may follow the other",
          reading.compact);
}

void requireSameValues(std::string_view text, const Reading& reading) {
  const nlohmann::json tree = reference::tree(text);
  require(reference::tree(reading.compact) == tree, "the compact layout means the same",
          reading.compact);
  if (!reference::isTellable(text)) return;
  require(reading.compact.size() == reference::compact(tree).size(), "there are no blanks",
          reading.compact);
  require(reading.pretty == reference::literal(reference::pretty(tree)),
          "pretty text is the judge's", reading.pretty);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::uint8_t seed = input.byte();
  const std::string_view text = input.rest();

  const Reading whole = readInPieces(text, {text.size()});
  require(readInPieces(text, pieceEnds(text.size(), seed)) == whole, "pieces make no difference");

  const reference::Verdict verdict = reference::verdict(text);
  require(verdict != reference::Verdict::wellFormed || whole.isComplete(), "what is right is read");
  require(verdict != reference::Verdict::malformed || !whole.isComplete(),
          "what is wrong is refused");
  if (!whole.isComplete()) return 0;

  require(whole.compact.size() <= 2 * text.size(), "nothing grows but slashes");
  requireFixedPoints(whole);
  if (verdict == reference::Verdict::wellFormed) requireSameValues(text, whole);
  return 0;
}
