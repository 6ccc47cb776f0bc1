#include "tests/exhaustive/utf8_sequences.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <thread>
#include <vector>

#include "json/read_string.h"

namespace {

using Bytes = std::array<unsigned char, 4>;

/// The length of the code point at the start of four bytes; 0 if they do not start with one. By
/// definition: decode, then check that the value needs that length and is not a surrogate.
std::size_t plainLength(const Bytes& bytes) {
  constexpr std::array<std::uint32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
  const unsigned lead = bytes[0];
  const std::size_t length = lead >= 0xF8   ? 0
                             : lead >= 0xF0 ? 4
                             : lead >= 0xE0 ? 3
                             : lead >= 0xC0 ? 2
                                            : 0;
  if (length == 0) return 0;
  std::uint32_t codePoint = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((bytes.at(i) & 0xC0U) != 0x80U) return 0;
    codePoint = codePoint << 6U | (bytes.at(i) & 0x3FU);
  }
  const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  return codePoint >= least.at(length) && codePoint <= 0x10FFFF && !isSurrogate ? length : 0;
}

/// The result of skipNonAscii() for the first `size` bytes.
bool agree(const Bytes& bytes, std::size_t size) {
  const char* const begin = reinterpret_cast<const char*>(bytes.data());
  const char* at = begin;
  const json::Progress progress = json::skipNonAscii(at, begin + size);
  const auto skipped = static_cast<std::size_t>(at - begin);
  const std::size_t length = plainLength(bytes);
  if (progress == json::Progress::done) return length > 0 && skipped == length && length <= size;
  if (skipped != 0) return false;
  return progress == json::Progress::malformed ? length == 0 : length == 0 || length > size;
}

struct Count {
  std::atomic<std::size_t> sequences = 0;
  std::atomic<std::size_t> differences = 0;
};

void report(const Bytes& bytes, std::size_t size) {
  std::ostringstream line;
  line << "differs: " << size << " bytes of" << std::hex;
  for (const unsigned byte : bytes) line << ' ' << byte;
  std::cout << line.str() + "\n";
}

/// Every sequence that starts with this byte, which is not printable ASCII.
void checkLead(unsigned char lead, Count& count) {
  for (std::uint32_t rest = 0; rest < 1U << 24U; ++rest) {
    const Bytes bytes{lead, static_cast<unsigned char>(rest >> 16U),
                      static_cast<unsigned char>(rest >> 8U), static_cast<unsigned char>(rest)};
    for (std::size_t size = 1; size <= 4; ++size) {
      if (!agree(bytes, size) && ++count.differences <= 10) report(bytes, size);
    }
  }
  count.sequences += std::size_t{1} << 24U;
}

}  // namespace

bool checkUtf8Sequences() {
  Count count;
  std::atomic<unsigned> next = 0;
  std::vector<std::jthread> threads(std::max(1U, std::thread::hardware_concurrency()));
  for (std::jthread& thread : threads) {
    thread = std::jthread([&] {
      for (unsigned lead = next++; lead < 256; lead = next++) {
        if (lead < 0x20 || lead >= 0x80) checkLead(static_cast<unsigned char>(lead), count);
      }
    });
  }
  threads.clear();
  std::cout << "UTF-8: " << count.sequences << " sequences, each in every length, "
            << count.differences << " differences\n";
  return count.differences == 0;
}
