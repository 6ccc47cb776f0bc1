#pragma once

#include <functional>
#include <vector>

#include "benchmarks/driver/contestant.h"

/// Takes one sample of one contestant.
using Sampler = std::function<double()>;

/// A sampler for each contestant, in order.
std::vector<Sampler> samplersFor(const std::vector<Contestant>& contestants,
                                 const std::function<Sampler(const Contestant&)>& make);

/// Takes samples in turn: in every round each sampler a few times in a row, A A B B C C A A ...,
/// so that whatever slows the machine for a while slows all alike. Returns the median of each.
std::vector<double> interleavedMedians(const std::vector<Sampler>& samplers, int rounds,
                                       int samplesPerRound);
