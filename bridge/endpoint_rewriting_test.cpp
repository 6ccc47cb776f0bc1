#include <gtest/gtest.h>
#include <pthread.h>
#include <time.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <thread>

#include "bridge/endpoint.h"
#include "tests/unit/home_override.h"

namespace {

/// One of the two texts of the file. They have the same length and differ in every member.
std::string textOf(int which, std::size_t filling) {
  const std::string digit = std::to_string(which);
  return R"({"version":)" + digit + R"(,"port":)" + digit + R"(000,"filling":")" +
         std::string(filling, 'x') + R"(","token":"token )" + digit + R"("})";
}

/// An application that truncates and rewrites its file again and again, instead of replacing it.
class NonAtomicWriter {
 public:
  NonAtomicWriter(std::filesystem::path path, std::size_t filling, std::size_t piece)
      : path_(std::move(path)), filling_(filling), piece_(piece), thread_([this] { run(); }) {}
  NonAtomicWriter(const NonAtomicWriter&) = delete;
  NonAtomicWriter& operator=(const NonAtomicWriter&) = delete;
  ~NonAtomicWriter() {
    done_ = true;
    thread_.join();
  }

 private:
  void run() {
    for (int which = 1; !done_; which = 3 - which) {
      std::ofstream file;
      file.rdbuf()->pubsetbuf(nullptr, 0);  // each << is a write of its own
      file.open(path_, std::ios::binary | std::ios::trunc);
      const std::string text = textOf(which, filling_);
      for (std::size_t at = 0; at < text.size(); at += piece_) {
        file << std::string_view(text).substr(at, piece_);
      }
      std::this_thread::sleep_for(std::chrono::microseconds(50));  // time to read it whole
    }
  }

  std::filesystem::path path_;
  std::size_t filling_;
  std::size_t piece_;
  std::atomic<bool> done_ = false;
  std::thread thread_;
};

/// Interrupts the thread that created it again and again. Signals are delivered when a system call
/// returns, so the thread mostly pauses between two of them.
class Interruptions {
 public:
  Interruptions() {
    struct sigaction pause{};
    pause.sa_handler = [](int) {
      const timespec moment{.tv_sec = 0, .tv_nsec = 30'000};
      nanosleep(&moment, nullptr);
    };
    sigaction(SIGUSR1, &pause, &before_);
    thread_ = std::thread([this, reader = pthread_self()] {
      while (!done_) {
        pthread_kill(reader, SIGUSR1);
        std::this_thread::sleep_for(std::chrono::microseconds(100));
      }
    });
  }
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;
  ~Interruptions() {
    done_ = true;
    thread_.join();
    sigaction(SIGUSR1, &before_, nullptr);
  }

 private:
  struct sigaction before_{};
  std::atomic<bool> done_ = false;
  std::thread thread_;
};

/// Loads the endpoint while the file is rewritten in pieces of that size. Each time, it must be
/// that of one of the two texts, or none.
void expectNoMixture(std::size_t filling, std::size_t piece) {
  constexpr int enough = 300;
  constexpr int mostLoads = 2'000'000;
  const HomeOverride home;
  const NonAtomicWriter writer(home.file().path(), filling, piece);
  const Interruptions interruptions;
  std::map<std::int64_t, int> seen{{1, 0}, {2, 0}};
  for (int load = 0; load < mostLoads && (seen[1] < enough || seen[2] < enough); ++load) {
    const auto endpoint = bridge::Endpoint::load();
    if (!endpoint) continue;
    const std::int64_t which = endpoint->version;
    ++seen[which];
    ASSERT_EQ(seen.size(), 2U) << which;
    ASSERT_EQ(endpoint->port, which * 1000);
    ASSERT_EQ(endpoint->token, "token " + std::to_string(which));
  }
  EXPECT_GE(seen[1], enough);
  EXPECT_GE(seen[2], enough);
}

TEST(EndpointBeingRewritten, IsNeverAMixtureOfSmallFiles) {
  expectNoMixture(0, 1000);
}

TEST(EndpointBeingRewritten, IsNeverAMixtureOfSmallFilesWrittenInPieces) {
  expectNoMixture(0, 7);
}

TEST(EndpointBeingRewritten, IsNeverAMixtureOfBigFiles) {
  expectNoMixture(8'000, 100'000);
}

TEST(EndpointBeingRewritten, IsNeverAMixtureOfBigFilesWrittenInPieces) {
  expectNoMixture(8'000, 1'000);
}

}  // namespace
