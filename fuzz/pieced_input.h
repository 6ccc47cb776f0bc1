#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// A descriptor to read from, on which bytes come in pieces: each read gets one of them, as far
/// as it has room, and when there are no more, reads get the end of input twice.
class PiecedInput {
 public:
  /// The pieces of pieceEnds(). They are few and short enough to be taken in before anybody
  /// reads: at most 8 KiB in all.
  PiecedInput(std::string_view bytes, std::uint8_t seed);
  PiecedInput(const PiecedInput&) = delete;
  PiecedInput& operator=(const PiecedInput&) = delete;
  ~PiecedInput();

  [[nodiscard]] int descriptor() const { return ends_[0]; }

 private:
  void send(std::string_view piece) const;

  std::array<int, 2> ends_{-1, -1};
};
