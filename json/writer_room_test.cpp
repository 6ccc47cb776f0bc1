#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "common/bytes.h"
#include "json/reader.h"
#include "json/writer.h"

// The writers reserve room before they write. Whoever writes more than that has a buffer with more
// bytes than room.

namespace json {
namespace {

using Append = void (*)(common::Bytes&, Value);

std::ptrdiff_t roomLeft(Append append, std::string_view message) {
  const auto document = read(message);
  common::Bytes out;
  append(out, document.value().root());
  return static_cast<std::ptrdiff_t>(out.capacity()) - static_cast<std::ptrdiff_t>(out.size());
}

// The slashes take all the room that was expected for the whole message.
TEST(WriterRoom, SufficesForALongNumberAfterTextThatGrew) {
  std::string message = "[\"" + std::string(1'000'000, '/') + "\",";
  message += std::string(1'000'000, '7') + "]";
  EXPECT_GE(roomLeft(appendCompact, message), 0);
  EXPECT_GE(roomLeft(appendPrettyQuoted, message), 0);
}

// The indentation takes more room than was expected. The filling moves the members to every place
// around the one where the buffer has to grow.
TEST(WriterRoom, SufficesForAMemberWhereverTheBufferGrows) {
  const std::string member =
      R"("name of 32 characters, the limit":"value of 32 characters, as well")";
  std::string objects;
  for (int level = 0; level < 100; ++level) objects += "{" + member + R"(,"o":)";
  objects += "0" + std::string(100, '}');
  for (std::size_t filling = 0; filling < 1000; ++filling) {
    std::string message = "[\"" + std::string(filling, 'x') + "\",";
    message += objects + "]";
    ASSERT_GE(roomLeft(appendPrettyQuoted, message), 0) << filling;
  }
}

}  // namespace
}  // namespace json
