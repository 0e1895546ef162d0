// Loading big and hostile files through the reader, in memory, into a window
// held in memory (previews rendered as the real window renders them). The
// three shapes at 12.5, 25 and 50 MB show whether the time grows linearly.
#include <benchmark/benchmark.h>

#include <memory>

#include "document/schema_reader.hpp"
#include "support/fake_window.hpp"

namespace {

using lorekeep::kLanguageCount;

constexpr const char* kKeys[] = {"lang_english ", "lang_french ", "lang_german ", "lang_italian "};
constexpr const char* kStamp = "2005-03-14 14:05:09 \"";

enum Shape { kOneHugeRecord, kManyCommas, kManyShortLines };

// A valid file of about `bytes` bytes: the bulk in the English record, made
// of one long line, of fields between commas, or of short lines.
std::string MakeFile(Shape shape, std::size_t bytes) {
    std::string file = "VERSION 2.0\r\nTextEntry\r\nbig\r\n";
    file.reserve(bytes + 1024);
    file += std::string(kKeys[0]) + kStamp + "\\n<font=Papyrus14>\\n";
    const std::string piece = "Lore of the keep \\n<br>\\n tower and";
    while (file.size() < bytes) {
        file += piece;
        if (shape == kManyCommas) {
            file += ',';
        } else if (shape == kManyShortLines) {
            file += "\r\n";
        }
    }
    file += "\"\r\n";
    for (int i = 1; i < kLanguageCount; ++i) {
        file += std::string(kKeys[i]) + kStamp + "x\"\r\n";
    }
    return file;
}

void BM_Load(benchmark::State& state) {
    const auto shape = static_cast<Shape>(state.range(0));
    const std::string file = MakeFile(shape, static_cast<std::size_t>(state.range(1)) << 20);
    for (auto _ : state) {
        state.PauseTiming();
        auto w = std::make_unique<lorekeep::testing::FakeWindow>();
        const lorekeep::LoadTargets targets = w->LoadTargetsOf();
        state.ResumeTiming();
        if (!lorekeep::LoadFromBytes(file, targets)) {
            state.SkipWithError("the file did not load");
        }
        state.PauseTiming();
        w.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * file.size()));
}

BENCHMARK(BM_Load)
    ->ArgNames({"shape", "MB"})
    ->ArgsProduct({{kOneHugeRecord, kManyCommas, kManyShortLines}, {12, 25, 50}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace
