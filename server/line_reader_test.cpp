#include "server/line_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/unit/pipe.h"

namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

void ignore(std::string_view /*beginning*/) {}

Lines allLines(int descriptor) {
  server::LineReader reader(descriptor);
  Lines lines;
  while (const auto line = reader.next(ignore)) lines.emplace_back(*line);
  return lines;
}

/// The lines of an input that arrives in these pieces.
Lines lines(const std::vector<std::string>& pieces) {
  Pipe pipe;
  std::thread writer = writeInPieces(pipe, pieces);
  Lines read = allLines(pipe.readEnd());
  writer.join();
  return read;
}

TEST(LineReader, EmptyInputHasNoLines) {
  EXPECT_EQ(lines({""}), Lines{});
}

TEST(LineReader, LineFeedsEndLines) {
  EXPECT_EQ(lines({"one\ntwo\nthree\n"}), (Lines{"one", "two", "three"}));
}

TEST(LineReader, CarriageReturnBeforeALineFeedIsPartOfTheEnd) {
  EXPECT_EQ(lines({"one\r\ntwo\r\n\r\nthree\n"}), (Lines{"one", "two", "", "three"}));
}

TEST(LineReader, OtherCarriageReturnsArePartOfTheLine) {
  EXPECT_EQ(lines({"a\rb\n\rc\nd\r\r\n\r\r"}), (Lines{"a\rb", "\rc", "d\r", "\r\r"}));
}

TEST(LineReader, LastLineMayLackItsEnd) {
  EXPECT_EQ(lines({"one\ntwo"}), (Lines{"one", "two"}));
  EXPECT_EQ(lines({"one\ntwo\r"}), (Lines{"one", "two\r"}));
  EXPECT_EQ(lines({"x"}), Lines{"x"});
}

TEST(LineReader, EmptyLinesAreLines) {
  EXPECT_EQ(lines({"\n\na\n\n"}), (Lines{"", "", "a", ""}));
}

TEST(LineReader, AnyOtherByteIsPartOfTheLine) {
  const std::string bytes("\0 \t\v\f\xFF\xC3\x85\xE2\x80\xA8\x1A\x04", 13);
  EXPECT_EQ(lines({bytes + "\n" + bytes}), (Lines{bytes, bytes}));
}

TEST(LineReader, LinesMayArriveInPieces) {
  EXPECT_EQ(lines({"o", "ne\nt", "wo", "\r", "\n", "thr", "ee"}), (Lines{"one", "two", "three"}));
}

TEST(LineReader, LineIsReturnedBeforeTheNextIsComplete) {
  const Pipe pipe;
  server::LineReader reader(pipe.readEnd());
  pipe.write("one\ntw");
  EXPECT_EQ(reader.next(ignore), "one");
  pipe.write("o\n");
  EXPECT_EQ(reader.next(ignore), "two");
}

TEST(LineReader, PassesOnTheBeginningOfAnIncompleteLine) {
  Pipe pipe;
  server::LineReader reader(pipe.readEnd());
  const Lines pieces{"two", "three\r", "\r", "\n", "end\r"};
  Lines beginnings;
  const auto partial = [&](std::string_view beginning) {
    beginnings.emplace_back(beginning);
    pipe.write(pieces.at(beginnings.size() - 1));
    if (beginnings.size() == pieces.size()) pipe.closeWriteEnd();
  };
  pipe.write("zero\none");
  EXPECT_EQ(reader.next(partial), "zero");
  EXPECT_EQ(beginnings, Lines{});
  EXPECT_EQ(reader.next(partial), "onetwothree\r");
  EXPECT_EQ(beginnings, (Lines{"one", "onetwo", "onetwothree", "onetwothree\r"}));
}

TEST(LineReader, PassesOnOnlyBeginningsOfALongLine) {
  const std::string line = "x\r\r" + std::string(1'000'000, '\r') + "y\r\r";
  Pipe pipe;
  std::thread writer([&] { pipe.write(line + "\r\n"); });
  server::LineReader reader(pipe.readEnd());
  std::size_t longest = 0;
  const auto read = reader.next([&](std::string_view beginning) {
    EXPECT_TRUE(line.starts_with(beginning));
    EXPECT_GE(beginning.size(), longest);
    longest = beginning.size();
  });
  EXPECT_TRUE(read == line);
  EXPECT_GT(longest, 0U);
  writer.join();
}

TEST(LineReader, LinesMayHaveAnyLength) {
  Lines expected;
  std::string input;
  for (const std::size_t length :
       {0UL, 65535UL, 65536UL, 65537UL, 5'000'000UL, 1UL, 3'000'000UL, 131071UL, 131072UL, 2UL}) {
    expected.emplace_back(length, static_cast<char>('a' + expected.size()));
    input += expected.back() + '\n';
  }
  EXPECT_TRUE(lines({input}) == expected);
}

TEST(LineReader, ManyShortLinesAreReturned) {
  Lines expected;
  std::string input;
  for (int i = 0; i < 100000; ++i) {
    expected.push_back(std::to_string(i));
    input += expected.back() + (i % 3 == 0 ? "\r\n" : "\n");
  }
  EXPECT_TRUE(lines({input}) == expected);
}

TEST(LineReader, WaitsForANonBlockingDescriptor) {
  Pipe pipe;
  fcntl(pipe.readEnd(), F_SETFL, fcntl(pipe.readEnd(), F_GETFL) | O_NONBLOCK);
  std::thread writer([&] {
    std::this_thread::sleep_for(50ms);
    pipe.write("one\ntw");
    std::this_thread::sleep_for(50ms);
    pipe.write("o\n");
    pipe.closeWriteEnd();
  });
  EXPECT_EQ(allLines(pipe.readEnd()), (Lines{"one", "two"}));
  writer.join();
}

TEST(LineReader, SignalDoesNotEndTheInput) {
  struct sigaction interrupting{};
  interrupting.sa_handler = [](int) {};
  struct sigaction before{};
  sigaction(SIGUSR1, &interrupting, &before);
  Pipe pipe;
  std::thread writer([&, reading = pthread_self()] {
    for (int i = 0; i < 5; ++i) {
      std::this_thread::sleep_for(20ms);
      pthread_kill(reading, SIGUSR1);
    }
    pipe.write("one\n");
    pipe.closeWriteEnd();
  });
  EXPECT_EQ(allLines(pipe.readEnd()), Lines{"one"});
  writer.join();
  sigaction(SIGUSR1, &before, nullptr);
}

TEST(LineReader, DescriptorThatCannotBeReadIsTheEndOfInput) {
  EXPECT_EQ(allLines(-1), Lines{});
  const int folder = open("/", O_RDONLY);
  EXPECT_EQ(allLines(folder), Lines{});
  close(folder);
}

TEST(LineReader, LeavesTheDescriptorOpen) {
  Pipe pipe;
  pipe.closeWriteEnd();
  EXPECT_EQ(allLines(pipe.readEnd()), Lines{});
  EXPECT_NE(fcntl(pipe.readEnd(), F_GETFD), -1);
}

}  // namespace
