#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// A descriptor from which each read() gets one piece of the bytes, and at the end, twice, the end
/// of input.
class PiecedInput {
 public:
  /// Cuts the bytes, at most 8 KiB, as pieceEnds() does.
  PiecedInput(std::string_view bytes, std::uint8_t seed);
  PiecedInput(const PiecedInput&) = delete;
  PiecedInput& operator=(const PiecedInput&) = delete;
  ~PiecedInput();

  [[nodiscard]] int descriptor() const { return ends_[0]; }

 private:
  void send(std::string_view piece) const;

  std::array<int, 2> ends_{-1, -1};
};
