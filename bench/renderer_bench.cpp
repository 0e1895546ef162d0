#include <benchmark/benchmark.h>

#include "bench_bodies.hpp"
#include "markup/incremental_renderer.hpp"
#include "markup/renderer.hpp"
#include "support/reference_renderer.hpp"

namespace {

using lorekeep::bench::markedUpBody;

constexpr std::size_t kLongestBody = 32767;

void setCounters(benchmark::State& state, std::size_t markers) {
    state.counters["chars"] = static_cast<double>(state.range(0));
    state.counters["markers"] = static_cast<double>(markers);
}

// The renderer the program uses: one pass over the body.
void BM_ProgramRenderer(benchmark::State& state) {
    std::size_t markers = 0;
    const auto body = markedUpBody(static_cast<std::size_t>(state.range(0)), &markers);
    for (auto _ : state) {
        benchmark::DoNotOptimize(lorekeep::markup::renderPreview(body));
    }
    setCounters(state, markers);
}

// The literal algorithm, splicing the whole text at every marker.
void BM_ReferenceRenderer(benchmark::State& state) {
    std::size_t markers = 0;
    const auto body = markedUpBody(static_cast<std::size_t>(state.range(0)), &markers);
    for (auto _ : state) {
        benchmark::DoNotOptimize(lorekeep::testing::referenceRender(body));
    }
    setCounters(state, markers);
}

// One character typed and taken back at the end or in the middle of a long
// body, each edit rendered incrementally with its patch.
void BM_IncrementalEdit(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    lorekeep::markup::IncrementalRenderer renderer;
    renderer.reset(markedUpBody(length));
    const std::size_t at = state.range(1) != 0 ? length / 2 : length;
    for (auto _ : state) {
        benchmark::DoNotOptimize(renderer.replace(at, 0, u"x"));
        benchmark::DoNotOptimize(renderer.replace(at, 1, u""));
    }
    state.counters["chars"] = static_cast<double>(length);
}

BENCHMARK(BM_IncrementalEdit)
    ->ArgNames({"chars", "middle"})
    ->ArgsProduct({{kLongestBody, 1'000'000, 4'000'000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ProgramRenderer)
    ->Arg(kLongestBody)
    ->Arg(2 * kLongestBody)
    ->Arg(1'000'000)
    ->Arg(4'000'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReferenceRenderer)
    ->Arg(kLongestBody)
    ->Arg(2 * kLongestBody)
    ->Unit(benchmark::kMillisecond);

}  // namespace
