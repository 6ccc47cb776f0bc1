#include "bridge/endpoint.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>

#include "tests/unit/home_override.h"

namespace {

/// The endpoint in a file with these bytes.
std::optional<bridge::Endpoint> loadFrom(std::string_view bytes) {
  const HomeOverride home;
  home.file().write(bytes);
  return bridge::Endpoint::load();
}

TEST(Endpoint, HasTheMembersOfTheFile) {
  const auto endpoint = loadFrom(R"({"port":50123,"token":"t","version":1,"further":{"port":1}})");
  ASSERT_TRUE(endpoint);
  EXPECT_EQ(endpoint->version, 1);
  EXPECT_EQ(endpoint->port, 50123);
  EXPECT_EQ(endpoint->token, "t");
}

TEST(Endpoint, MissingFileIsNoEndpoint) {
  const HomeOverride home;
  EXPECT_FALSE(bridge::Endpoint::load());
}

TEST(Endpoint, MissingFolderIsNoEndpoint) {
  const HomeOverride home;
  std::filesystem::remove_all(home.file().path().parent_path());
  EXPECT_FALSE(bridge::Endpoint::load());
}

TEST(Endpoint, FolderInPlaceOfTheFileIsNoEndpoint) {
  const HomeOverride home;
  std::filesystem::create_directory(home.file().path());
  EXPECT_FALSE(bridge::Endpoint::load());
}

TEST(Endpoint, NamedPipeInPlaceOfTheFileIsNoEndpoint) {
  const HomeOverride home;
  ASSERT_EQ(mkfifo(home.file().path().c_str(), 0600), 0);
  EXPECT_FALSE(bridge::Endpoint::load());
}

#ifdef __linux__
TEST(Endpoint, FileWhoseReadingFailsIsNoEndpoint) {
  const HomeOverride home;
  // A regular file. Reading its first bytes fails, because no process has memory there.
  std::filesystem::create_symlink("/proc/self/mem", home.file().path());
  EXPECT_FALSE(bridge::Endpoint::load());
}
#endif

TEST(Endpoint, EveryMemberIsRequired) {
  EXPECT_FALSE(loadFrom(R"({"port":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":1})"));
  EXPECT_FALSE(loadFrom("{}"));
}

TEST(Endpoint, NullMemberIsNoEndpoint) {
  EXPECT_FALSE(loadFrom(R"({"version":null,"port":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":null,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":1,"token":null})"));
}

TEST(Endpoint, PortAsAStringIsNoEndpoint) {
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":"50123","token":"t"})"));
}

TEST(Endpoint, MembersOfOtherTypesAreNoEndpoint) {
  EXPECT_FALSE(loadFrom(R"({"version":"1","port":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":true,"port":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":[1],"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":1,"token":1})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":1,"token":{}})"));
}

TEST(Endpoint, NamesMustMatchExactly) {
  EXPECT_FALSE(loadFrom(R"({"Version":1,"port":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"PORT":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":1,"token ":"t"})"));
}

TEST(Endpoint, FractionsAreNotIntegers) {
  EXPECT_FALSE(loadFrom(R"({"version":1.5,"port":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":80.25,"token":"t"})"));
}

TEST(Endpoint, IntegersMustFit64Bits) {
  EXPECT_FALSE(loadFrom(R"({"version":9223372036854775808,"port":1,"token":"t"})"));
  EXPECT_FALSE(loadFrom(R"({"version":1,"port":-9223372036854775809,"token":"t"})"));
  const auto endpoint =
      loadFrom(R"({"version":-9223372036854775808,"port":9223372036854775807,"token":"t"})");
  ASSERT_TRUE(endpoint);
  EXPECT_EQ(endpoint->version, INT64_MIN);
  EXPECT_EQ(endpoint->port, INT64_MAX);
}

TEST(Endpoint, PortMayBeOutOfRange) {
  for (const int port : {-1, 0, 65536, 70000}) {
    const auto endpoint = loadFrom(EndpointFile::text(port));
    ASSERT_TRUE(endpoint) << port;
    EXPECT_EQ(endpoint->port, port);
  }
}

TEST(Endpoint, MayHaveAnyVersion) {
  for (const int version : {-5, 0, 999}) {
    const auto endpoint = loadFrom(EndpointFile::text(1, "t", version));
    ASSERT_TRUE(endpoint) << version;
    EXPECT_EQ(endpoint->version, version);
  }
}

TEST(Endpoint, TokenIsDecodedAndMayBeEmpty) {
  EXPECT_EQ(loadFrom(R"({"version":1,"port":1,"token":""})")->token, "");
  EXPECT_EQ(loadFrom(R"({"version":1,"port":1,"token":"a\/b\u00e9"})")->token, "a/b\xC3\xA9");
}

TEST(Endpoint, FileWithOtherContentIsNoEndpoint) {
  const std::string usable = EndpointFile::text(50123);
  EXPECT_TRUE(loadFrom(usable));
  EXPECT_FALSE(loadFrom(""));
  EXPECT_FALSE(loadFrom("  \n"));
  EXPECT_FALSE(loadFrom("not JSON"));
  EXPECT_FALSE(loadFrom("[" + usable + "]"));
  EXPECT_FALSE(loadFrom(usable + "x"));
  EXPECT_FALSE(loadFrom("{\"version\":1,\"port\":1,\"token\":\"\xFF\"}"));
}

TEST(Endpoint, IncompleteFileIsNoEndpoint) {
  const std::string usable = EndpointFile::text(50123);
  for (std::size_t length = 0; length < usable.size(); ++length) {
    EXPECT_FALSE(loadFrom(usable.substr(0, length))) << length;
  }
}

TEST(Endpoint, CallThatWasInterruptedBeforeDoesNotMatter) {
  const HomeOverride home;
  for (const std::string& text : {EndpointFile::text(50123), std::string()}) {
    home.file().write(text);
    errno = EINTR;
    EXPECT_EQ(bridge::Endpoint::load().has_value(), !text.empty());
  }
}

TEST(Endpoint, FileMayBeLongAndEndInALineFeed) {
  const std::string filler(1000000, 'x');
  EXPECT_TRUE(loadFrom("{\"filler\":\"" + filler +
                       R"(","version":1,"port":1,"token":"t"})"
                       "\n"));
}

TEST(Endpoint, FileAbove16MebibytesIsNoEndpoint) {
  constexpr std::size_t mostBytes = std::size_t{16} << 20U;
  const std::string usable = EndpointFile::text(50123);
  EXPECT_TRUE(loadFrom(usable + std::string(mostBytes - usable.size(), ' ')));
  EXPECT_FALSE(loadFrom(usable + std::string(mostBytes - usable.size() + 1, ' ')));
}

TEST(Endpoint, SparseFileOf64GibibytesIsNoEndpoint) {
  const HomeOverride home;
  home.file().publish(50123);
  std::filesystem::resize_file(home.file().path(), std::uintmax_t{64} << 30U);
  EXPECT_FALSE(bridge::Endpoint::load());
}

TEST(Endpoint, IsReadAgainEachTime) {
  const HomeOverride home;
  home.file().publish(1000, "first", 1);
  EXPECT_EQ(bridge::Endpoint::load()->port, 1000);
  home.file().publish(2000, "second", 2);
  const auto second = bridge::Endpoint::load();
  ASSERT_TRUE(second);
  EXPECT_EQ(second->port, 2000);
  EXPECT_EQ(second->token, "second");
  EXPECT_EQ(second->version, 2);
  home.file().remove();
  EXPECT_FALSE(bridge::Endpoint::load());
}

}  // namespace
