#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/unit/random_documents.h"
#include "tests/unit/reference.h"
#include "tests/unit/written.h"

// The text of thousands of random documents, compared with another JSON library.

namespace json {
namespace {

template <typename Check>
void forEachDocument(Check check) {
  RandomDocuments documents(20240805);
  for (int i = 0; i < 4000 && !testing::Test::HasFailure(); ++i) {
    const std::string document = documents.next(i % 10 == 0 ? 400 : 30);
    SCOPED_TRACE(document);
    check(document);
  }
}

TEST(CompactAgainstReference, HasTheSameValue) {
  forEachDocument([](const std::string& document) {
    EXPECT_EQ(reference::tree(compact(document).value()), reference::tree(document));
  });
}

TEST(CompactAgainstReference, HasTheLengthOfTheReference) {
  forEachDocument([](const std::string& document) {
    EXPECT_EQ(compact(document).value().size(),
              reference::compact(reference::tree(document)).size());
  });
}

TEST(CompactAgainstReference, IsUnchangedWhenWrittenAgain) {
  forEachDocument([](const std::string& document) {
    const std::string once = compact(document).value();
    EXPECT_EQ(compact(once), once);
  });
}

TEST(PrettyAgainstReference, HasTheBytesOfTheReference) {
  forEachDocument([](const std::string& document) {
    EXPECT_EQ(prettyQuoted(document),
              reference::literal(reference::pretty(reference::tree(document))));
  });
}

TEST(PrettyAgainstReference, HasTheSameValueWhenUnquoted) {
  forEachDocument([](const std::string& document) {
    const auto text = nlohmann::json::parse(prettyQuoted(document).value()).get<std::string>();
    EXPECT_EQ(reference::tree(text), reference::tree(document));
  });
}

TEST(PrettyAgainstReference, IsUnchangedWhenUnquotedAndWrittenAgain) {
  forEachDocument([](const std::string& document) {
    const std::string once = prettyQuoted(document).value();
    EXPECT_EQ(prettyQuoted(nlohmann::json::parse(once).get<std::string>()), once);
    EXPECT_EQ(prettyQuoted(compact(document).value()), once);
  });
}

TEST(QuotedAgainstReference, HasTheBytesOfTheReference) {
  forEachDocument([](const std::string& document) {
    EXPECT_EQ(stringLiteral(document), reference::literal(document));
    EXPECT_EQ(nlohmann::json::parse(stringLiteral(document)).get<std::string>(), document);
  });
}

/// Makes arrays of objects with nearly the same names.
class Listings {
 public:
  std::string next() {
    names_ = {"id", "path", "a name of many bytes", "x", "\\u0079", "size"};
    std::string text = "[";
    for (std::size_t count = below(9); count > 0; --count) {
      if (oneIn(3)) varyNames();
      if (oneIn(8)) text += R"([{"id":1,"path":2}],)";
      if (oneIn(8)) text += R"("id","path",)";
      appendObject(text);
      text += space() + ',';
    }
    return text + "0]";
  }

 private:
  void varyNames() {
    const auto place = [this] { return names_.begin() + static_cast<std::ptrdiff_t>(below(5)); };
    switch (below(4)) {
      case 0: std::iter_swap(place(), place()); break;
      case 1: *place() = "x"; break;
      case 2: *place() = "sizes"; break;
      default: names_.resize(5 + below(3), "y"); break;
    }
  }

  void appendObject(std::string& text) {
    text += '{';
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (i > 0) text += ',';
      text += space() + '"' + names_[i] + '"' + space() + ':' + space() + value();
    }
    text += '}';
  }

  std::string value() {
    constexpr std::array<std::string_view, 6> values{
        "1", R"("id")", "[]", "{}", R"({"id":1,"path":2})", R"([{"b":1,"a":2},{"b":3,"a":4}])"};
    return std::string(values.at(below(values.size())));
  }

  std::string space() { return oneIn(20) ? " " : ""; }
  std::size_t below(std::size_t count) { return random_() % count; }
  bool oneIn(std::size_t count) { return below(count) == 0; }

  std::mt19937_64 random_{5};
  std::vector<std::string> names_;
};

TEST(WriterAgainstReference, ListingsOfSimilarObjectsHaveTheBytesOfTheReference) {
  Listings listings;
  for (int i = 0; i < 4000 && !testing::Test::HasFailure(); ++i) {
    const std::string document = listings.next();
    SCOPED_TRACE(document);
    EXPECT_EQ(reference::tree(compact(document).value()), reference::tree(document));
    EXPECT_EQ(prettyQuoted(document),
              reference::literal(reference::pretty(reference::tree(document))));
  }
}

// Long strings are copied in chunks.
TEST(WriterAgainstReference, EscapesMayCrossTheEndOfAChunk) {
  for (const std::string_view unit :
       {R"(\ud83d\ude00)", R"(\ud800)", R"(\u0001)", R"(\")", R"(\\)", R"(\\u0041)", R"(\\/)",
        R"(\/\n\u0041\\)", "/", "\xF0\x9F\x98\x80"}) {
    for (std::size_t shift = 0; shift < 14; ++shift) {
      std::string document = "[\"" + std::string(shift, 'x');
      while (document.size() < 40000) document += unit;
      document += R"(","after"])";
      const nlohmann::json tree = reference::tree(document);
      ASSERT_TRUE(compact(document) == reference::compact(tree)) << unit << " after " << shift;
      ASSERT_TRUE(prettyQuoted(document) == reference::literal(reference::pretty(tree)))
          << unit << " after " << shift;
    }
  }
}

}  // namespace
}  // namespace json
