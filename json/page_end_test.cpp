#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/bytes.h"
#include "json/reader.h"
#include "json/string_writer.h"
#include "json/writer.h"
#include "tests/unit/written.h"

// Scanning functions load whole blocks. None may touch a page after the text, which can be missing.

namespace json {
namespace {

/// Memory whose end is followed by a page that may not be accessed.
class PageEnd {
 public:
  PageEnd()
      : pages_(static_cast<char*>(
            mmap(nullptr, 2 * size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    mprotect(pages_ + size_, size_, PROT_NONE);
  }
  PageEnd(const PageEnd&) = delete;
  PageEnd& operator=(const PageEnd&) = delete;
  ~PageEnd() { munmap(pages_, 2 * size_); }

  /// A copy of the text that ends where the page ends. Valid until the next call.
  std::string_view place(std::string_view text) {
    char* const to = pages_ + size_ - text.size();
    std::ranges::copy(text, to);
    return {to, text.size()};
  }

 private:
  std::size_t size_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  char* pages_;
};

std::string repeated(std::string_view unit, std::size_t length) {
  std::string text;
  while (text.size() < length) text += unit;
  return text;
}

/// What strings consist of: plain text, escapes of each kind, UTF-8 of each length.
constexpr std::string_view units[] = {"a",
                                      "/",
                                      R"(\n)",
                                      R"(\/)",
                                      R"(\u00e9)",
                                      R"(\ud800)",
                                      R"(\ud83d\ude00)",
                                      "\xC3\xA9",
                                      "\xE2\x82\xAC",
                                      "\xF0\x9F\x98\x80"};

constexpr std::size_t longest = 150;  // more than two chunks of 64 bytes

TEST(PageEnd, ReadingAndWritingStayBeforeIt) {
  PageEnd page;
  for (const std::string_view unit : units) {
    for (std::size_t length = 0; length <= longest; ++length) {
      const std::string content = repeated(unit, length);
      const std::string_view text = page.place("[\"" + content + "\"]");
      const auto document = read(text);
      ASSERT_TRUE(document) << unit << ' ' << length;
      common::Bytes compactBytes;
      common::Bytes prettyBytes;
      appendCompact(compactBytes, document->root());
      appendPrettyQuoted(prettyBytes, document->root());
      const std::string elsewhere = std::string(text) + std::string(100, ' ');
      ASSERT_EQ(compactBytes.view(), compact(elsewhere));
      ASSERT_EQ(prettyBytes.view(), prettyQuoted(elsewhere));
    }
  }
}

TEST(PageEnd, ReadingIncompleteTextStaysBeforeIt) {
  PageEnd page;
  for (const std::string_view unit : units) {
    for (std::size_t length = 0; length <= longest; ++length) {
      const std::string text = R"({"name":")" + repeated(unit, longest);
      Reader reader;
      const std::string_view cut = page.place(std::string_view(text).substr(0, 1 + length));
      ASSERT_EQ(reader.read(cut), Reader::State::incomplete) << unit << ' ' << length;
    }
  }
}

TEST(PageEnd, NamesOfEveryLengthAreSortedBeforeIt) {
  PageEnd page;
  for (std::size_t length = 0; length <= 40; ++length) {
    for (const std::string_view end : {"1}", "\"\"}", "{}}"}) {
      const std::string name(length, 'n');
      std::string object = R"({")" + name;
      object.append(R"(b":0,")").append(name).append(R"(":)").append(end);
      const std::string_view text = page.place(object);
      const auto document = read(text);
      ASSERT_TRUE(document);
      common::Bytes pretty;
      appendPrettyQuoted(pretty, document->root());
      ASSERT_LT(pretty.view().find("\\\"" + name + "\\\""),
                pretty.view().find("\\\"" + name + "b\\\""));
    }
  }
}

TEST(PageEnd, NumbersAndLiteralsOfEveryLengthStayBeforeIt) {
  PageEnd page;
  for (std::size_t length = 1; length <= longest; ++length) {
    for (const std::string& value : {std::string(length, '1'), std::string("true")}) {
      const std::string_view text = page.place("[" + value + "]");
      const auto document = read(text);
      ASSERT_TRUE(document);
      common::Bytes compact;
      appendCompact(compact, document->root());
      ASSERT_EQ(compact.view(), text);
    }
  }
}

std::uint64_t findAnySlash(const char* from, std::ptrdiff_t /*size*/) {
  return mask<isAnySlash>(from);
}

TEST(PageEnd, EveryScanningFunctionStaysBeforeIt) {
  PageEnd page;
  for (std::ptrdiff_t size = 1; size <= maskWidth; ++size) {
    const std::string_view text = page.place(std::string(static_cast<std::size_t>(size), '/'));
    const char* const end = text.data() + text.size();
    ASSERT_EQ(findIn<findAnySlash>(text.data(), size, end), ~std::uint64_t{0} >> (64 - size));
    std::vector<char> escaped(4 * longest + 64);
    const Copied copied = copyEscaped<Escaping::twice>(text.data(), size, end, end, escaped.data());
    ASSERT_EQ(copied.from, end);
    ASSERT_EQ(copied.to - escaped.data(), 4 * size);
  }
}

}  // namespace
}  // namespace json
