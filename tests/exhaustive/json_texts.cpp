#include "tests/exhaustive/json_texts.h"

#include <array>
#include <atomic>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/unit/reference.h"
#include "tests/unit/written.h"

namespace {

/// Texts that consist of a prefix, some of twelve symbols, and a suffix.
struct Family {
  std::string_view name;
  std::string_view prefix;
  std::array<std::string_view, 12> symbols;
  std::string_view suffix;
};

constexpr Family structure{
    "structure", "", {"{", "}", "[", "]", ":", ",", "\"", "\\", "0", "1", "-", "e"}, ""};
constexpr Family literals{
    "literals", "[", {"0", "1", "-", "+", ".", "e", "E", "true", "null", ",", " ", "]"}, "]"};
constexpr Family strings{
    "strings",
    "[\"",
    {"\\", "\"", "/", "u", "n", "d800", "dc00", "0041", "\xC3", "\xA9", "\xED", "\x1F"},
    "\"]"};

/// Whether this code and the reference agree on the text. The reference does not judge numbers
/// that no double can hold.
bool agree(const std::string& text) {
  const reference::Validity validity = reference::validity(text);
  if (validity == reference::Validity::unknown) return true;
  const auto written = compact(text);
  const bool accepted = validity == reference::Validity::valid;
  if (!accepted || !written) return accepted == written.has_value();
  const auto tree = reference::tree(text);
  return reference::tree(*written) == tree && written->size() == reference::compact(tree).size() &&
         prettyQuoted(text) == reference::literal(reference::pretty(tree));
}

/// The texts of a family with `length` symbols of which the first is given.
class Texts {
 public:
  Texts(const Family& family, std::size_t length, std::size_t first)
      : family_(family), digits_(length, 0) {
    digits_[0] = first;
  }

  [[nodiscard]] std::string text() const {
    std::string text(family_.prefix);
    for (const std::size_t digit : digits_) text += family_.symbols.at(digit);
    return text.append(family_.suffix);
  }

  /// False after the last one.
  bool next() {
    for (std::size_t i = digits_.size() - 1; i > 0; --i) {
      if (++digits_[i] < family_.symbols.size()) return true;
      digits_[i] = 0;
    }
    return false;
  }

 private:
  const Family& family_;
  std::vector<std::size_t> digits_;
};

struct Count {
  std::atomic<std::size_t> texts = 0;
  std::atomic<std::size_t> differences = 0;
};

void checkTexts(const Family& family, std::size_t length, std::size_t first, Count& count) {
  Texts texts(family, length, first);
  do {
    ++count.texts;
    const std::string text = texts.text();
    if (!agree(text) && ++count.differences <= 10) std::cout << "differs: " + text + "\n";
  } while (texts.next());
}

/// The first symbols are divided among as many threads as there are processors.
bool checkFamily(const Family& family, std::size_t length) {
  Count count;
  for (std::size_t symbols = 1; symbols <= length; ++symbols) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> threads(std::max(1U, std::thread::hardware_concurrency()));
    for (std::jthread& thread : threads) {
      thread = std::jthread([&] {
        for (std::size_t first = next++; first < family.symbols.size(); first = next++) {
          checkTexts(family, symbols, first, count);
        }
      });
    }
  }
  std::cout << family.name << ": " << count.texts << " texts, " << count.differences
            << " differences\n";
  return count.differences == 0;
}

}  // namespace

bool checkJsonTexts(std::size_t length) {
  bool same = true;
  for (const Family& family : {structure, literals, strings}) {
    same = checkFamily(family, length) && same;
  }
  return same;
}
