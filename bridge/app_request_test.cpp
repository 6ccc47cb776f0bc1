#include "bridge/app_request.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "json/reader.h"

namespace {

std::string request(const bridge::Endpoint& endpoint, std::string_view tool,
                    std::string_view arguments) {
  const auto document = json::read(arguments);
  return std::string(bridge::appRequest(endpoint, tool, document.value().root()).view());
}

TEST(AppRequest, HasFourMembers) {
  EXPECT_EQ(request({1, 50123, "secret"}, "read_file", R"({ "drive" : "Home" })"),
            R"({"version":1,"token":"secret","tool":"read_file","arguments":{"drive":"Home"}})");
}

TEST(AppRequest, MayHaveAnyVersion) {
  EXPECT_EQ(request({INT64_MIN, 1, ""}, "", "{}"),
            R"({"version":-9223372036854775808,"token":"","tool":"","arguments":{}})");
}

TEST(AppRequest, QuotesTokenAndTool) {
  EXPECT_EQ(request({0, 1, "a\"b/c\\"}, "\xED\xA0\x80\n", "{}"),
            R"({"version":0,"token":"a\"b\/c\\","tool":"\ud800\n","arguments":{}})");
}

TEST(AppRequest, KeepsNumbersUnchanged) {
  EXPECT_EQ(
      request({0, 1, ""}, "t", R"({"n":[1.0,1e400,12345678901234567890123]})"),
      R"({"version":0,"token":"","tool":"t","arguments":{"n":[1.0,1e400,12345678901234567890123]}})");
}

}  // namespace
