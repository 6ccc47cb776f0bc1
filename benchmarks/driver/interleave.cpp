#include "benchmarks/driver/interleave.h"

#include <algorithm>
#include <iterator>

namespace {

double median(std::vector<double>& samples) {
  const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::ranges::nth_element(samples, middle);
  if (samples.size() % 2 == 1) return *middle;
  return (*middle + *std::max_element(samples.begin(), middle)) / 2;
}

}  // namespace

std::vector<Sampler> samplersFor(const std::vector<Contestant>& contestants,
                                 const std::function<Sampler(const Contestant&)>& make) {
  std::vector<Sampler> samplers;
  std::ranges::transform(contestants, std::back_inserter(samplers), make);
  return samplers;
}

std::vector<double> interleavedMedians(const std::vector<Sampler>& samplers, int rounds,
                                       int samplesPerRound) {
  std::vector<std::vector<double>> samples(samplers.size());
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < samplers.size(); ++i) {
      for (int n = 0; n < samplesPerRound; ++n) samples[i].push_back(samplers[i]());
    }
  }
  std::vector<double> medians;
  std::ranges::transform(samples, std::back_inserter(medians), median);
  return medians;
}
