#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>

namespace {

const std::string build = QUILLMARK_BUILD_AS_INSTALLED;

/// The output of readelf for the installed program.
std::string readelf(const std::string& option) {
  const std::string command = "LC_ALL=C readelf -W " + option + " '" + build + "/quillmark-mcp'";
  const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), &pclose);
  if (!output) throw std::runtime_error("cannot start readelf");
  std::string text;
  std::array<char, 4096> block{};
  while (const std::size_t count = std::fread(block.data(), 1, block.size(), output.get())) {
    text.append(block.data(), count);
  }
  return text;
}

/// The first group of each match.
std::set<std::string> findAll(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
    found.insert(at->str(1));
  }
  return found;
}

bool matches(const std::string& text, const std::string& pattern) {
  return std::regex_search(text, std::regex(pattern));
}

TEST(Hardening, ProgramIsPositionIndependent) {
  EXPECT_TRUE(matches(readelf("-h"), R"(Type:\s+DYN)"));
  EXPECT_TRUE(matches(readelf("-d"), R"(FLAGS_1.*\bPIE\b)"));
}

TEST(Hardening, RelocationsAreReadOnly) {
  EXPECT_TRUE(matches(readelf("-l"), R"(GNU_RELRO)"));
  EXPECT_TRUE(matches(readelf("-d"), R"(FLAGS.*\b(BIND_NOW|NOW)\b)"));
}

TEST(Hardening, StackIsProtectedAndNotExecutable) {
  EXPECT_TRUE(matches(readelf("--dyn-syms"), R"(\b__stack_chk_fail\b)"));
  EXPECT_EQ(findAll(readelf("-l"), R"(GNU_STACK(?:\s+0x[0-9a-f]+){5}\s+(\S+))"),
            std::set<std::string>{"RW"});
}

TEST(Hardening, NoSegmentIsWritableAndExecutable) {
  const auto flags = findAll(readelf("-l"), R"(LOAD(?:\s+0x[0-9a-f]+){5}\s+((?:\S ?)+?)\s+0x)");
  EXPECT_GE(flags.size(), 3U);
  for (const std::string& segment : flags) {
    EXPECT_TRUE(segment.find('W') == std::string::npos || segment.find('E') == std::string::npos)
        << segment;
  }
}

TEST(Hardening, ProgramNeedsOnlyTheCLibrary) {
  const std::string entries = readelf("-d");
  const auto libraries = findAll(entries, R"(NEEDED.*\[([^\]]+)\])");
  EXPECT_TRUE(libraries.contains("libc.so.6"));
  for (const std::string& library : libraries) {
    EXPECT_TRUE(matches(library, R"(^(libc\.so\.6|libm\.so\.6|ld-linux.*\.so\.\d)$)")) << library;
  }
  EXPECT_FALSE(matches(entries, R"(\b(RPATH|RUNPATH)\b)"));
}

// The program does not call the checked functions, because no buffer in it has a size that the
// compiler knows and a length that it does not know. So the test looks at the compiler's options.
TEST(Hardening, EverySourceIsCompiledWithTheProtections) {
  std::ifstream file(build + "/compile_commands.json");
  std::set<std::string> targets;
  for (std::string command; std::getline(file, command);) {
    const auto target = findAll(command, R"( -o CMakeFiles/(quillmark-mcp|quillmark_core)\.dir/)");
    if (target.empty()) continue;
    targets.insert(target.begin(), target.end());
    EXPECT_TRUE(matches(command, R"x( -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=[23]( |$))x")) << command;
    EXPECT_TRUE(matches(command, R"( -O[123] )")) << command;
    EXPECT_TRUE(matches(command, R"( -fstack-protector-strong )")) << command;
  }
  EXPECT_EQ(targets.size(), 2U);
}

}  // namespace
