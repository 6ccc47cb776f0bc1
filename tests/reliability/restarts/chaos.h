#pragma once

#include <sys/types.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "tests/reliability/restarts/history.h"
#include "tests/support/temporary_home.h"

/// Kills and restarts the application of one home folder, and stops and continues its server, at
/// random moments.
class Chaos {
 public:
  /// `app` is the path of the application's program.
  Chaos(const TemporaryHome& home, std::string app, unsigned seed)
      : home_(home), records_(home.home()), app_(std::move(app)), random_(seed) {}

  /// Starts the application and waits until it has published its port.
  void startApp();
  /// Kills the application once, and waits until it is back. Either the test or `open` starts it.
  void restartApp(pid_t server);
  void killApp();

  [[nodiscard]] const AppRecords& records() const { return records_; }
  [[nodiscard]] const std::vector<Restart>& restarts() const { return restarts_; }
  [[nodiscard]] const std::vector<Interval>& stops() const { return stops_; }

 private:
  bool oneIn(unsigned times) { return random_() % times == 0; }
  void pause(std::chrono::milliseconds most);
  void stopAndContinue(pid_t server);
  void spawnApp() const;
  [[nodiscard]] std::string command() const;
  void waitForCall(const std::string& token) const;
  Publication waitForPublication(std::size_t number) const;

  const TemporaryHome& home_;
  AppRecords records_;
  std::string app_;
  std::mt19937 random_;
  std::vector<Restart> restarts_;
  std::vector<Interval> stops_;
};
