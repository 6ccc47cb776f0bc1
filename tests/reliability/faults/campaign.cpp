#include "tests/reliability/faults/campaign.h"

#include <atomic>
#include <cstdio>
#include <map>
#include <random>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <utility>

#include "tests/reliability/faults/tally.h"
#include "tests/reliability/faults/trace.h"

namespace {

std::mt19937 fixedRandom() {
  return std::mt19937(12);  // NOLINT: the same numbers every time
}

/// strace takes one fault for each name, and it either attaches to the background thread or starts
/// the server. A failed close() is left undone, and after another fault its number may be that of a
/// socket, whose closing never fails.
bool canBePaired(const Fault& one, const Fault& other) {
  const auto inBackground = [](const Fault& fault) {
    return fault.where == Fault::Where::backgroundThread;
  };
  return one.row->call != other.row->call && inBackground(one) == inBackground(other) &&
         one.row->call != "close" && other.row->call != "close";
}

void runSideBySide(const Runner& runner, const std::vector<const Trial*>& trials,
                   std::size_t atOnce, Tally& tally) {
  std::atomic<std::size_t> next = 0;
  std::vector<std::jthread> threads;
  threads.reserve(atOnce);
  for (std::size_t i = 0; i < atOnce; ++i) {
    threads.emplace_back([&] {
      for (std::size_t mine = next++; mine < trials.size(); mine = next++) {
        const Trial& trial = *trials[mine];
        const Observed seen = runner.run(*trial.session, trial.faults);
        tally.add(trial.description(), trial.faults.size(),
                  judge(*trial.session, *trial.right, trial.faults, seen), seen.took);
      }
    });
  }
}

}  // namespace

std::string Trial::description() const {
  std::string text(session->name);
  for (const Fault& fault : faults) text += " " + fault.expression();
  return text;
}

Campaign::Campaign(const std::string& server, Choice choice) : runner_(server) {
  for (const Session& session : sessions()) {
    if (session.name.find(choice.session) == std::string_view::npos) continue;
    learned_.push_back(learn(session, choice.call));
  }
  if (learned_.empty()) throw std::runtime_error("no such session");
}

Observed Campaign::runWithoutFaults(const Session& session) const {
  constexpr int attempts = 3;
  Observed best = runner_.runTraced(session);
  for (int i = 1; i < attempts && !session.mostlyWaits(); ++i) {
    Observed next = runner_.runTraced(session);
    if (next.trace.size() < best.trace.size()) best = std::move(next);
  }
  return best;
}

Campaign::Learned Campaign::learn(const Session& session, std::string_view call) const {
  const Observed observed = runWithoutFaults(session);
  Learned learned{.session = &session,
                  .right = rightAnswers(session, observed),
                  .faults = faultsOf(observed.trace)};
  if (session.firstProbeIsAbandoned) {
    const Observed background = runner_.runBackgroundTraced(session);
    const auto more = faultsOfBackgroundThread(background.trace);
    learned.faults.insert(learned.faults.end(), more.begin(), more.end());
  }
  std::erase_if(learned.faults, [&](const Fault& fault) {
    return fault.row->call.find(call) == std::string_view::npos;
  });
  std::printf("%-40s %5zu faults, %4.1f s\n", std::string(session.name).c_str(),
              learned.faults.size(), observed.took.count());
  std::fflush(stdout);
  return learned;
}

std::vector<Trial> Campaign::singles() const {
  std::vector<Trial> trials;
  for (const Learned& learned : learned_) {
    for (const Fault& fault : learned.faults) {
      trials.push_back({learned.session, &learned.right, {fault}});
    }
  }
  return trials;
}

std::vector<Trial> Campaign::sample() const {
  using Way = std::tuple<const Session*, const FaultRow*, std::string, Fault::Where>;
  std::map<Way, std::vector<Trial>> ways;
  for (Trial& trial : singles()) {
    const Fault& fault = trial.faults.front();
    ways[{trial.session, fault.row, fault.injection, fault.where}].push_back(std::move(trial));
  }
  std::mt19937 random = fixedRandom();
  std::vector<Trial> sample;
  sample.reserve(ways.size());
  for (auto& [way, trials] : ways) sample.push_back(std::move(trials[random() % trials.size()]));
  return sample;
}

std::vector<Trial> Campaign::pairs(std::size_t count) const {
  std::mt19937 random = fixedRandom();
  std::vector<Trial> trials;
  while (trials.size() < count) {
    const Learned& learned = learned_[random() % learned_.size()];
    const Fault& one = learned.faults[random() % learned.faults.size()];
    const Fault& other = learned.faults[random() % learned.faults.size()];
    if (canBePaired(one, other)) trials.push_back({learned.session, &learned.right, {one, other}});
  }
  return trials;
}

bool Campaign::run(std::string_view what, const std::vector<Trial>& trials) const {
  constexpr std::size_t busyAtOnce = 2;
  constexpr std::size_t waitingAtOnce = 60;
  std::vector<const Trial*> busy;
  std::vector<const Trial*> waiting;
  for (const Trial& trial : trials) {
    (trial.session->mostlyWaits() ? waiting : busy).push_back(&trial);
  }
  Tally tally;
  runSideBySide(runner_, busy, busyAtOnce, tally);
  runSideBySide(runner_, waiting, waitingAtOnce, tally);
  tally.print(what);
  return tally.withoutViolation();
}
