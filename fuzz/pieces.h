#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

/// Cuts a text of `size` bytes into up to eight pieces, at places that `seed` determines, and
/// returns where each ends. No piece is empty; an empty text has none.
inline std::vector<std::size_t> pieceEnds(std::size_t size, std::uint8_t seed) {
  constexpr unsigned mostPieces = 8;
  std::vector<std::size_t> ends;
  if (size == 0) return ends;
  std::minstd_rand random(seed);
  ends.push_back(size);
  for (unsigned cuts = seed % mostPieces; cuts > 0; --cuts) ends.push_back(random() % size + 1);
  std::ranges::sort(ends);
  const auto repeated = std::ranges::unique(ends);
  ends.erase(repeated.begin(), repeated.end());
  return ends;
}

/// The input of a fuzzer, read from the front.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : left_(reinterpret_cast<const char*>(data), size) {}

  /// The next byte; zero if nothing is left.
  std::uint8_t byte() {
    if (left_.empty()) return 0;
    const auto first = static_cast<std::uint8_t>(left_.front());
    left_.remove_prefix(1);
    return first;
  }

  [[nodiscard]] std::string_view rest() const { return left_; }

 private:
  std::string_view left_;
};
