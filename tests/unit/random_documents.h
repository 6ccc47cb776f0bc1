#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

/// Generates valid JSON documents, each an object or array, with everything that makes reading
/// hard: every way to write a string or number, repeated names, white space, empty containers, deep
/// nesting. The same seed gives the same documents on every system.
///
/// No string contains a character of U+E000 to U+E7FF; see reference.h.
class RandomDocuments {
 public:
  explicit RandomDocuments(std::uint64_t seed) : random_(seed) {}

  /// The next document, with at most about `size` values.
  std::string next(std::size_t size);

  /// The document with one byte changed, removed or inserted. It may still be valid.
  std::string changed(std::string document);

  /// A number from 0 to `count` - 1.
  std::size_t below(std::size_t count) { return random_() % count; }

 private:
  void value(std::size_t depth);
  void container(std::size_t depth);
  void object(std::size_t depth);
  void array(std::size_t depth);
  void deepContainers();
  void name();
  void string();
  void character();
  void unicodeEscape(unsigned unit);
  void number();
  void whiteSpace();

  bool oneIn(std::size_t count) { return below(count) == 0; }

  std::mt19937_64 random_;
  std::string text_;
  std::size_t left_ = 0;  // values that may still be added
};
