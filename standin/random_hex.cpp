#include "standin/random_hex.h"

#include <random>
#include <string_view>

namespace standin {

std::string randomHex(std::size_t bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::random_device source;
  std::uniform_int_distribution<std::size_t> digit(0, digits.size() - 1);
  std::string text;
  for (std::size_t i = 0; i < 2 * bytes; ++i) text += digits[digit(source)];
  return text;
}

}  // namespace standin
