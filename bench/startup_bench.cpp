// Time from process start to the first shown window: the editor against a
// minimal Qt Widgets program with one empty window of the same size. Each
// iteration starts the program afresh and waits for it to end, which it does
// as soon as its window is up (Qt's offscreen platform, no display needed).
#include <benchmark/benchmark.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include <vector>
#include "processes.hpp"

namespace {

void runOnce(const char* program, benchmark::State& state) {
    const pid_t pid = lorekeep::bench::startOnPlatform({program}, "offscreen");
    if (pid == 0) {
        state.SkipWithError("cannot start the program");
        return;
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        state.SkipWithError("the program failed");
    }
}

void BM_StartupMinimalWindow(benchmark::State& state) {
    for (auto _ : state) {
        runOnce(LOREKEEP_STARTUP_MINIMAL, state);
    }
}

void BM_StartupEditor(benchmark::State& state) {
    for (auto _ : state) {
        runOnce(LOREKEEP_STARTUP_EDITOR, state);
    }
}

BENCHMARK(BM_StartupMinimalWindow)->Unit(benchmark::kMillisecond)->MinTime(3.0)->UseRealTime();
BENCHMARK(BM_StartupEditor)->Unit(benchmark::kMillisecond)->MinTime(3.0)->UseRealTime();

}  // namespace
