#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "json/reader.h"
#include "tests/unit/judge.h"
#include "tests/unit/laid_out.h"
#include "tests/unit/random_documents.h"

// What is read and what is refused, judged by another JSON library.

namespace json {
namespace {

using State = Reader::State;

TEST(ReaderJudged, ReadsEveryRandomDocument) {
  RandomDocuments documents(1);
  for (int i = 0; i < 5000; ++i) {
    const std::string document = documents.next(50);
    ASSERT_EQ(judge::verdict(document), judge::Verdict::wellFormed) << document;
    ASSERT_TRUE(read(document)) << document;
  }
}

TEST(ReaderJudged, ReadsAMutantJustWhenTheJudgeDoes) {
  RandomDocuments documents(2);
  int read = 0;
  int refused = 0;
  int unjudged = 0;
  for (int i = 0; i < 40000; ++i) {
    const std::string mutant = documents.mutant(documents.next(12));
    const auto laidOut = compact(mutant);
    switch (judge::verdict(mutant)) {
      case judge::Verdict::wellFormed:
        ASSERT_TRUE(laidOut) << mutant;
        ASSERT_EQ(judge::tree(*laidOut), judge::tree(mutant)) << mutant;
        ++read;
        break;
      case judge::Verdict::malformed:
        ASSERT_FALSE(laidOut) << mutant;
        ++refused;
        break;
      case judge::Verdict::none: ++unjudged;
    }
  }
  EXPECT_GT(read, 4000);
  EXPECT_GT(refused, 10000);
  EXPECT_LT(unjudged, 1000);
}

/// What a reader makes of a text that comes in two pieces, the second at another place in
/// memory: its state, and the compact layout if the state is complete.
struct Outcome {
  State state;
  std::string layout;
  bool operator==(const Outcome&) const = default;
};

Outcome outcome(Reader& reader, const std::string& text) {
  const State state = reader.read(text);
  if (state != State::complete) return {state, ""};
  const Document document = std::move(reader).take(text);
  Text layout;
  appendCompact(layout, document.root());
  return {state, std::string(layout.view())};
}

Outcome whole(const std::string& text) {
  Reader reader;
  return outcome(reader, text);
}

Outcome inTwoPieces(const std::string& text, std::size_t split) {
  Reader reader;
  reader.read(std::string(text, 0, split));
  return outcome(reader, text);
}

Outcome byteByByte(const std::string& text) {
  Reader reader;
  for (std::size_t length = 0; length < text.size(); ++length) {
    reader.read(std::string(text, 0, length));
  }
  return outcome(reader, text);
}

/// From one place where a text is cut to the next: all are tried, but only some hundreds in one
/// of many thousand bytes.
std::size_t stride(const std::string& text) {
  return 1 + text.size() / 500;
}

TEST(ReaderJudged, PiecesMakeNoDifference) {
  RandomDocuments documents(3);
  for (int i = 0; i < 200; ++i) {
    const std::string document = documents.next(15);
    const std::string text = i % 2 == 0 ? document : documents.mutant(document);
    const Outcome expected = whole(text);
    for (std::size_t split = 0; split <= text.size(); split += stride(text)) {
      ASSERT_EQ(inTwoPieces(text, split), expected) << text << " split at " << split;
    }
    ASSERT_EQ(byteByByte(text), expected) << text;
  }
}

TEST(ReaderJudged, NoBeginningOfADocumentIsRefused) {
  RandomDocuments documents(4);
  for (int i = 0; i < 500; ++i) {
    const std::string document = documents.next(15);
    for (std::size_t length = 0; length < document.size(); length += stride(document)) {
      Reader reader;
      ASSERT_NE(reader.read(std::string(document, 0, length)), State::malformed)
          << document << " cut to " << length;
    }
  }
}

}  // namespace
}  // namespace json
