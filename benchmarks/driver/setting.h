#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/driver/contestant.h"
#include "benchmarks/driver/stand_in_application.h"
#include "tests/support/endpoint_file.h"
#include "tests/support/temporary_home.h"

/// What all measures share: who is measured, how often, and the world around them, which is a
/// home folder with an endpoint file and the application that it leads to.
class Setting {
 public:
  Setting(std::vector<Contestant> who, int howOften)
      : contestants(std::move(who)), rounds(howOften) {
    EndpointFile(home_).publish(application.port(), token());
  }

  const std::vector<Contestant> contestants;
  const int rounds;
  StandInApplication application;

  std::string home() const { return home_.home(); }
  std::string_view token() const { return "4f1c9a6e2b7d4c58a3e0"; }

 private:
  TemporaryHome home_;
};
