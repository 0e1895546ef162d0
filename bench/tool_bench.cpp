// lorekeep-tool check over a mod's folder: time and peak memory for 100 to
// 3,000 schema files of about 10 KB each (the target: 1,000 files in under
// 2 s, memory that does not grow with the number of files).
//   build/release/bench/tool_bench
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "bench_bodies.hpp"
#include "processes.hpp"
#include "schema/schema_writer.hpp"
#include "tool/cli.hpp"

namespace {

namespace fs = std::filesystem;
using lorekeep::bench::statusMegabytes;

std::string fileName(int n) {
    std::string name = std::to_string(n);
    name.insert(0, 1, 's');
    name += ".sch";
    return name;
}

// `count` schema files of about 10 KB, made once per count.
fs::path modFolder(int count) {
    const fs::path folder =
        fs::temp_directory_path() / "lorekeep-bench-mod" / std::to_string(count);
    if (fs::exists(folder / fileName(count - 1))) {
        return folder;
    }
    fs::create_directories(folder / "quests");
    lorekeep::SchemaDocument document;
    document.font = u"Papyrus14";
    for (int i = 0; i < lorekeep::kLanguageCount; ++i) {
        document.entries[i] = {u"The Tower " + lorekeep::Text(1, char16_t(u'A' + i)),
                               lorekeep::bench::markedUpBody(2400 + 10 * i)};
    }
    for (int n = 0; n < count; ++n) {
        document.name = u"s" + lorekeep::fromUtf8(std::to_string(n));
        std::ofstream(folder / (n % 2 ? "quests" : ".") / fileName(n), std::ios::binary)
            << lorekeep::composeSchemaBytes(document, {2026, 11, 25, 10, 0, 0});
    }
    return folder;
}

void BM_CheckFolder(benchmark::State& state) {
    const fs::path folder = modFolder(static_cast<int>(state.range(0)));
    std::ofstream("/proc/self/clear_refs") << "5";  // peak memory counted from here
    const double before = statusMegabytes("VmRSS:");
    for (auto _ : state) {
        // Findings go where a terminal would take them, not into memory.
        std::ofstream out("/dev/null");
        benchmark::DoNotOptimize(lorekeep::tool::runTool({"check", folder.string()}, out, out));
    }
    state.counters["files"] = static_cast<double>(state.range(0));
    state.counters["peak_MB"] = statusMegabytes("VmHWM:") - before;
}
BENCHMARK(BM_CheckFolder)->Arg(100)->Arg(1000)->Arg(3000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
