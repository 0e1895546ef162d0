// Finding and replacing in long bodies, the text alone (the window adds
// reading the editor and writing the change back):
// - the next match found from the far end of a 16,000,000-character body;
// - every one of 100,000 matches in a 4,000,000-character body replaced.
#include <benchmark/benchmark.h>

#include "bench_bodies.hpp"
#include "search/find.hpp"

namespace {

// With accents 1, one letter in 40 is an "é", as in French prose.
void BM_FindNextFromTheFarEnd(benchmark::State& state) {
    lorekeep::Text body = lorekeep::bench::markedUpBody(16'000'000 - 6);
    if (state.range(1) != 0) {
        for (std::size_t k = 20; k < body.size(); k += 40) {
            body[k] = u'é';
        }
    }
    body += u"dragon";
    const lorekeep::search::FindOptions options{.matchCase = state.range(0) != 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(lorekeep::search::findNext(body, u"Dragon", options, 0));
    }
}
BENCHMARK(BM_FindNextFromTheFarEnd)
    ->ArgNames({"match_case", "accents"})
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

void BM_ReplaceAll(benchmark::State& state) {
    const lorekeep::Text body = lorekeep::bench::markedUpBody(4'000'000);
    std::size_t count = 0;
    for (auto _ : state) {
        const auto matches = lorekeep::search::findAll(body, u"tower", {});
        const auto replaced = lorekeep::search::replaceMatches(body, matches, u"keep");
        count = matches.size();
        benchmark::DoNotOptimize(replaced.text.data());
    }
    state.counters["replaced"] = static_cast<double>(count);
}
BENCHMARK(BM_ReplaceAll)->Unit(benchmark::kMillisecond);

}  // namespace
