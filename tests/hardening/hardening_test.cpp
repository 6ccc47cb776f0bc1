#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

const std::string build = QUILLMARK_BUILD_AS_INSTALLED;

/// What readelf has to say of the installed program when it is asked like that.
std::string readelf(const std::string& option) {
  const std::string command = "LC_ALL=C readelf -W " + option + " '" + build + "/quillmark-mcp'";
  const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), &pclose);
  if (!output) throw std::runtime_error("readelf can't be started");
  std::string text;
  std::array<char, 4096> block{};
  while (const std::size_t got = std::fread(block.data(), 1, block.size(), output.get())) {
    text.append(block.data(), got);
  }
  return text;
}

/// The first groups of all matches.
std::set<std::string> all(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
    found.insert(at->str(1));
  }
  return found;
}

bool has(const std::string& text, const std::string& pattern) {
  return std::regex_search(text, std::regex(pattern));
}

TEST(Hardening, ProgramCanBeLoadedAnywhere) {
  EXPECT_TRUE(has(readelf("-h"), R"(Type:\s+DYN)"));
  EXPECT_TRUE(has(readelf("-d"), R"(FLAGS_1.*\bPIE\b)"));
}

TEST(Hardening, TablesOfTheLoaderAreReadOnly) {
  EXPECT_TRUE(has(readelf("-l"), R"(GNU_RELRO)"));
  EXPECT_TRUE(has(readelf("-d"), R"(FLAGS.*\b(BIND_NOW|NOW)\b)"));
}

TEST(Hardening, StackIsGuardedAndHoldsNoCode) {
  EXPECT_TRUE(has(readelf("--dyn-syms"), R"(\b__stack_chk_fail\b)"));
  EXPECT_EQ(all(readelf("-l"), R"(GNU_STACK(?:\s+0x[0-9a-f]+){5}\s+(\S+))"),
            std::set<std::string>{"RW"});
}

TEST(Hardening, NoSegmentIsBothWrittenAndExecuted) {
  const auto rights = all(readelf("-l"), R"(LOAD(?:\s+0x[0-9a-f]+){5}\s+((?:\S ?)+?)\s+0x)");
  EXPECT_GE(rights.size(), 3U);
  for (const std::string& segment : rights) {
    EXPECT_TRUE(segment.find('W') == std::string::npos || segment.find('E') == std::string::npos)
        << segment;
  }
}

TEST(Hardening, LibrariesAreThoseOfCAloneAndFoundWhereTheSystemHasThem) {
  const std::string entries = readelf("-d");
  const auto libraries = all(entries, R"(NEEDED.*\[([^\]]+)\])");
  EXPECT_TRUE(libraries.contains("libc.so.6"));
  for (const std::string& library : libraries) {
    EXPECT_TRUE(has(library, R"(^(libc\.so\.6|libm\.so\.6|ld-linux.*\.so\.\d)$)")) << library;
  }
  EXPECT_FALSE(has(entries, R"(\b(RPATH|RUNPATH)\b)"));
}

// The checked calls themselves can't be looked for: there is no call in the program whose buffer
// has a size that the compiler knows and a length that it does not.
TEST(Hardening, EverySourceIsCompiledWithCheckedCalls) {
  std::ifstream file(build + "/compile_commands.json");
  std::size_t sources = 0;
  for (const json& entry : json::parse(file)) {
    const auto source = entry.at("file").get<std::string>();
    const auto command = entry.at("command").get<std::string>();
    if (!has(source, R"(/(main|(bridge|catalogue|json|server)/\w+)\.cpp$)")) continue;
    if (source.ends_with("_test.cpp") || has(source, R"(/(standin|benchmarks|tests)/)")) continue;
    ++sources;
    EXPECT_TRUE(has(command, R"( -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=[23]( |$))")) << command;
    EXPECT_TRUE(has(command, R"( -O[123] )")) << command;
    EXPECT_TRUE(has(command, R"( -fstack-protector-strong )")) << command;
  }
  EXPECT_GT(sources, 20U);
}

}  // namespace
