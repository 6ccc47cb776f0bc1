// Reads and writes a text and compares the result with that of another JSON library.
//
// Input: a byte that determines how the text is cut into pieces, then the text.

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

/// Reads a text that arrives in pieces. Each time it is at another address, in memory of exactly
/// its size, so that the sanitizer finds a read after it.
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

void requireUnchangedWhenWrittenAgain(const Reading& reading) {
  const auto unquoted = nlohmann::json::parse(reading.pretty).get<std::string>();
  require(compact(reading.compact) == reading.compact,
          "compact text is unchanged when written again", reading.compact);
  require(prettyQuoted(unquoted) == reading.pretty, "pretty text is unchanged when written again",
          reading.pretty);
  require(prettyQuoted(reading.compact) == reading.pretty, "compact text has the same pretty text",
          reading.compact);
}

void requireSameValues(std::string_view text, const Reading& reading) {
  const nlohmann::json tree = reference::tree(text);
  require(reference::tree(reading.compact) == tree, "the compact text means the same",
          reading.compact);
  if (!reference::isUnambiguous(text)) return;
  require(reading.compact.size() == reference::compact(tree).size(),
          "the compact text has no white space", reading.compact);
  require(reading.pretty == reference::literal(reference::pretty(tree)),
          "the pretty text is that of the reference", reading.pretty);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::uint8_t seed = input.byte();
  const std::string_view text = input.rest();

  const Reading whole = readInPieces(text, {text.size()});
  require(readInPieces(text, pieceEnds(text.size(), seed)) == whole, "pieces make no difference");

  const reference::Validity validity = reference::validity(text);
  require(validity != reference::Validity::valid || whole.isComplete(), "valid text is accepted");
  require(validity != reference::Validity::invalid || !whole.isComplete(),
          "invalid text is rejected");
  if (!whole.isComplete()) return 0;

  require(whole.compact.size() <= 2 * text.size(), "compact text is at most twice as long");
  requireUnchangedWhenWrittenAgain(whole);
  if (validity == reference::Validity::valid) requireSameValues(text, whole);
  return 0;
}
