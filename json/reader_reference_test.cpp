#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "json/reader.h"
#include "tests/unit/random_documents.h"
#include "tests/unit/reference.h"
#include "tests/unit/written.h"

// Which texts are accepted, compared with another JSON library.

namespace json {
namespace {

using State = Reader::State;

TEST(ReaderAgainstReference, AcceptsEveryRandomDocument) {
  RandomDocuments documents(1);
  for (int i = 0; i < 5000; ++i) {
    const std::string document = documents.next(50);
    ASSERT_EQ(reference::validity(document), reference::Validity::valid) << document;
    ASSERT_TRUE(read(document)) << document;
  }
}

TEST(ReaderAgainstReference, AgreesOnChangedDocuments) {
  RandomDocuments documents(2);
  int read = 0;
  int rejected = 0;
  int unknown = 0;
  for (int i = 0; i < 40000; ++i) {
    const std::string changed = documents.changed(documents.next(12));
    const auto written = compact(changed);
    switch (reference::validity(changed)) {
      case reference::Validity::valid:
        ASSERT_TRUE(written) << changed;
        ASSERT_EQ(reference::tree(*written), reference::tree(changed)) << changed;
        ++read;
        break;
      case reference::Validity::invalid:
        ASSERT_FALSE(written) << changed;
        ++rejected;
        break;
      case reference::Validity::unknown: ++unknown;
    }
  }
  EXPECT_GT(read, 4000);
  EXPECT_GT(rejected, 10000);
  EXPECT_LT(unknown, 1000);
}

/// The result of reading a text: the state and, if it is complete, the compact text.
struct Outcome {
  State state;
  std::string compact;
  bool operator==(const Outcome&) const = default;
};

Outcome outcome(Reader& reader, const std::string& text) {
  const State state = reader.read(text);
  if (state != State::complete) return {state, ""};
  const Document document = std::move(reader).take();
  common::Bytes out;
  appendCompact(out, document.root());
  return {state, std::string(out.view())};
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

/// The distance between the places where a text is cut: 1, or more for texts of many thousand
/// bytes, so that some hundreds of places are tried.
std::size_t stride(const std::string& text) {
  return 1 + text.size() / 500;
}

TEST(ReaderAgainstReference, PiecesGiveTheSameResultAsTheWholeText) {
  RandomDocuments documents(3);
  for (int i = 0; i < 200; ++i) {
    const std::string document = documents.next(15);
    const std::string text = i % 2 == 0 ? document : documents.changed(document);
    const Outcome expected = whole(text);
    for (std::size_t split = 0; split <= text.size(); split += stride(text)) {
      ASSERT_EQ(inTwoPieces(text, split), expected) << text << " split at " << split;
    }
    ASSERT_EQ(byteByByte(text), expected) << text;
  }
}

TEST(ReaderAgainstReference, NoPrefixOfADocumentIsMalformed) {
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
