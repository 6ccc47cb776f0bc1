#include "common/one_call.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <climits>
#include <string_view>

namespace common {
namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20U;

/// Three gibibytes of address space without memory.
class ManyBytes {
 public:
  ManyBytes()
      : address_(mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANON | MAP_NORESERVE, -1, 0)) {}
  ManyBytes(const ManyBytes&) = delete;
  ManyBytes& operator=(const ManyBytes&) = delete;
  ~ManyBytes() { munmap(address_, size); }

  std::string_view view() const { return {static_cast<const char*>(address_), size}; }

 private:
  static constexpr std::size_t size = 3072 * mebibyte;
  void* address_;
};

TEST(ForOneCall, ReturnsShortTextWhole) {
  EXPECT_EQ(forOneCall(""), "");
  EXPECT_EQ(forOneCall("text"), "text");
}

TEST(ForOneCall, ReturnsNoMoreThanEverySystemAccepts) {
  const ManyBytes bytes;
  const std::string_view piece = forOneCall(bytes.view());
  EXPECT_EQ(piece.data(), bytes.view().data());
  EXPECT_LE(piece.size(), static_cast<std::size_t>(INT_MAX));
  EXPECT_GE(piece.size(), mebibyte);
}

}  // namespace
}  // namespace common
