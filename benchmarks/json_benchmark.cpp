// Reading and laying out the two kinds of big message there are: one long text, and a listing
// of many small objects.

#include <benchmark/benchmark.h>

#include <optional>
#include <string>
#include <string_view>

#include "benchmarks/driver/payloads.h"
#include "json/reader.h"
#include "json/writer.h"

namespace {

const std::string& message(bool listing) {
  constexpr std::size_t bytes = 4'000'000;
  static const std::string text = longTextReply(bytes).reply;
  static const std::string list = listingReply().reply;
  return listing ? list : text;
}

void countBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
  state.SetLabel(state.range(0) != 0 ? "listing" : "text");
}

void read(benchmark::State& state) {
  const std::string& text = message(state.range(0) != 0);
  while (state.KeepRunning()) benchmark::DoNotOptimize(json::read(text));
  countBytes(state, text.size());
}

template <void (*append)(common::Bytes&, json::Value)>
void layOut(benchmark::State& state) {
  const std::string& text = message(state.range(0) != 0);
  const std::optional<json::Document> document = json::read(text);
  if (!document) return state.SkipWithError("the message is not one");
  while (state.KeepRunning()) {
    common::Bytes out;
    append(out, document->root());
    benchmark::DoNotOptimize(out.view().data());
  }
  countBytes(state, text.size());
}

void quote(benchmark::State& state) {
  const std::string& text = message(state.range(0) != 0);
  while (state.KeepRunning()) {
    common::Bytes out;
    json::appendQuoted(out, text);
    benchmark::DoNotOptimize(out.view().data());
  }
  countBytes(state, text.size());
}

BENCHMARK(read)->Arg(0)->Arg(1);
BENCHMARK(layOut<json::appendCompact>)->Name("compact")->Arg(0)->Arg(1);
BENCHMARK(layOut<json::appendPrettyQuoted>)->Name("prettyQuoted")->Arg(0)->Arg(1);
BENCHMARK(quote)->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
