#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

/// Makes well-formed JSON documents, each an object or array, that have everything in them
/// that makes reading hard: every way to write a string or number, names given twice, white
/// space anywhere, empty containers, values far down. The same seed gives the same documents
/// everywhere.
///
/// No string holds a character of U+E000 to U+E7FF; see judge.h.
class RandomDocuments {
 public:
  explicit RandomDocuments(std::uint64_t seed) : random_(seed) {}

  /// The next one. `size` bounds how many values it has.
  std::string next(std::size_t size);

  /// The document with one byte changed, removed or inserted. It may still be well-formed.
  std::string mutant(std::string document);

  /// A number from 0 to `count` - 1.
  std::size_t below(std::size_t count) { return random_() % count; }

 private:
  void value(std::size_t depth);
  void container(std::size_t depth);
  void object(std::size_t depth);
  void array(std::size_t depth);
  void well();
  void name();
  void string();
  void character();
  void unicodeEscape(unsigned unit);
  void number();
  void blanks();

  bool oneIn(std::size_t count) { return below(count) == 0; }

  std::mt19937_64 random_;
  std::string text_;
  std::size_t left_ = 0;  // values that may still be written
};
