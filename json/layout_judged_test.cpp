#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/unit/judge.h"
#include "tests/unit/laid_out.h"
#include "tests/unit/random_documents.h"

// Both layouts of thousands of random documents, judged by another JSON library.

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

TEST(CompactLayoutJudged, MeansTheSame) {
  forEachDocument([](const std::string& document) {
    EXPECT_EQ(judge::tree(compact(document).value()), judge::tree(document));
  });
}

TEST(CompactLayoutJudged, IsAsLongAsTheJudges) {
  forEachDocument([](const std::string& document) {
    EXPECT_EQ(compact(document).value().size(), judge::compact(judge::tree(document)).size());
  });
}

TEST(CompactLayoutJudged, IsAFixedPoint) {
  forEachDocument([](const std::string& document) {
    const std::string once = compact(document).value();
    EXPECT_EQ(compact(once), once);
  });
}

TEST(PrettyLayoutJudged, IsTheJudgesToTheByte) {
  forEachDocument([](const std::string& document) {
    EXPECT_EQ(prettyQuoted(document), judge::literal(judge::pretty(judge::tree(document))));
  });
}

TEST(PrettyLayoutJudged, MeansTheSameWhenUnquoted) {
  forEachDocument([](const std::string& document) {
    const auto text = nlohmann::json::parse(prettyQuoted(document).value()).get<std::string>();
    EXPECT_EQ(judge::tree(text), judge::tree(document));
  });
}

TEST(PrettyLayoutJudged, IsAFixedPointWhenUnquoted) {
  forEachDocument([](const std::string& document) {
    const std::string once = prettyQuoted(document).value();
    EXPECT_EQ(prettyQuoted(nlohmann::json::parse(once).get<std::string>()), once);
    EXPECT_EQ(prettyQuoted(compact(document).value()), once);
  });
}

TEST(QuotingJudged, IsTheJudgesToTheByte) {
  forEachDocument([](const std::string& document) {
    EXPECT_EQ(literalOf(document), judge::literal(document));
    EXPECT_EQ(nlohmann::json::parse(literalOf(document)).get<std::string>(), document);
  });
}

// Long strings are laid out in pieces; whatever stands where one ends must come out whole.
TEST(LayoutsJudged, LongStringsAreWhateverStandsInThem) {
  for (const std::string_view unit :
       {R"(\ud83d\ude00)", R"(\ud800)", R"(\u0001)", R"(\")", R"(\\)", "/", "\xF0\x9F\x98\x80"}) {
    for (std::size_t shift = 0; shift < 14; ++shift) {
      std::string document = "[\"" + std::string(shift, 'x');
      while (document.size() < 40000) document += unit;
      document += R"(","after"])";
      const nlohmann::json tree = judge::tree(document);
      ASSERT_TRUE(compact(document) == judge::compact(tree)) << unit << " after " << shift;
      ASSERT_TRUE(prettyQuoted(document) == judge::literal(judge::pretty(tree)))
          << unit << " after " << shift;
    }
  }
}

}  // namespace
}  // namespace json
