#include <benchmark/benchmark.h>

#include "bench_bodies.hpp"
#include "markup/mod_schema_parse.hpp"
#include "markup/model_pane.hpp"
#include "support/reference_renderer.hpp"

namespace {

using lorekeep::bench::MarkedUpBody;

constexpr std::size_t kLongestBody = 32767;

void SetCounters(benchmark::State& state, std::size_t markers) {
    state.counters["chars"] = static_cast<double>(state.range(0));
    state.counters["markers"] = static_cast<double>(markers);
}

// The renderer the program uses: one pass over the body.
void BM_ProgramRenderer(benchmark::State& state) {
    std::size_t markers = 0;
    const auto body = MarkedUpBody(static_cast<std::size_t>(state.range(0)), &markers);
    for (auto _ : state) {
        benchmark::DoNotOptimize(lorekeep::modSchemaParse::RenderPreview(body));
    }
    SetCounters(state, markers);
}

// The literal algorithm, splicing the whole text at every marker.
void BM_ReferenceRenderer(benchmark::State& state) {
    std::size_t markers = 0;
    const auto body = MarkedUpBody(static_cast<std::size_t>(state.range(0)), &markers);
    for (auto _ : state) {
        lorekeep::markup::ModelPane pane;
        pane.SetText(body);
        lorekeep::testing::ReferenceParseSchemaText(pane);
        benchmark::DoNotOptimize(pane);
    }
    SetCounters(state, markers);
}

BENCHMARK(BM_ProgramRenderer)
    ->Arg(kLongestBody)
    ->Arg(2 * kLongestBody)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReferenceRenderer)
    ->Arg(kLongestBody)
    ->Arg(2 * kLongestBody)
    ->Unit(benchmark::kMillisecond);

}  // namespace
