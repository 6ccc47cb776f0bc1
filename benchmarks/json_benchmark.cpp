// Parsing and writing the two kinds of big message: one long text (0), and a listing of many small
// objects (1).

#include <benchmark/benchmark.h>

#include <optional>
#include <string>

#include "benchmarks/driver/calls.h"
#include "json/reader.h"
#include "json/writer.h"

namespace {

const std::string& message(const benchmark::State& state) {
  static const std::string text = longTextReply(4'000'000).reply;
  static const std::string listing = listingReply().reply;
  return state.range(0) == 0 ? text : listing;
}

void read(benchmark::State& state) {
  const std::string& text = message(state);
  while (state.KeepRunning()) benchmark::DoNotOptimize(json::read(text));
}

template <void (*append)(common::Bytes&, json::Value)>
void write(benchmark::State& state) {
  const std::optional<json::Document> document = json::read(message(state));
  if (!document) return state.SkipWithError("not JSON");
  while (state.KeepRunning()) {
    common::Bytes out;
    append(out, document->root());
    benchmark::DoNotOptimize(out.view().data());
  }
}

BENCHMARK(read)->Arg(0)->Arg(1);
BENCHMARK(write<json::appendCompact>)->Name("compact")->Arg(0)->Arg(1);
BENCHMARK(write<json::appendPrettyQuoted>)->Name("prettyQuoted")->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
