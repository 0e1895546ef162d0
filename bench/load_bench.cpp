// Loading big and hostile files. The reader alone takes the bytes apart in
// memory: the three shapes at 12.5, 25 and 50 MB show whether its time grows
// linearly. A whole load through the window's behaviour (file, reader, the
// controls and the four previews) is measured for one shape, on a file the
// window takes on.
#include <benchmark/benchmark.h>

#include <string>

#include "schema/schema_reader.hpp"
#include "support/fakes.hpp"
#include "support/test_support.hpp"

namespace {

using lorekeep::kLanguageCount;

constexpr const char* kKeys[] = {"lang_english ", "lang_french ", "lang_german ", "lang_italian "};
constexpr const char* kStamp = "2005-03-14 14:05:09 \"";

enum Shape { kOneHugeRecord, kManyCommas, kManyShortLines };

// A valid file of about `bytes` bytes: the bulk in the English record, made
// of one long line, of fields between commas, or of short lines.
std::string makeFile(Shape shape, std::size_t bytes) {
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

void BM_ReadSchema(benchmark::State& state) {
    const auto shape = static_cast<Shape>(state.range(0));
    const std::string file = makeFile(shape, static_cast<std::size_t>(state.range(1)) << 20);
    for (auto _ : state) {
        const lorekeep::SchemaRead read = lorekeep::readSchema(file);
        if (!read.complete()) {
            state.SkipWithError("the file did not read");
            break;
        }
        benchmark::DoNotOptimize(read);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * file.size()));
}

BENCHMARK(BM_ReadSchema)
    ->ArgNames({"shape", "MB"})
    ->ArgsProduct({{kOneHugeRecord, kManyCommas, kManyShortLines}, {12, 25, 50}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

// The whole load of a file of many short lines, 3 MB in its English body (the
// window refuses a body of more than four million characters).
void BM_LoadIntoWindow(benchmark::State& state) {
    const lorekeep::testing::TempDir dir;
    const std::string file = makeFile(kManyShortLines, static_cast<std::size_t>(3) << 20);
    lorekeep::testing::writeBytes(dir / "big.sch", file);
    lorekeep::testing::FakeWindow window;
    const lorekeep::Text folder = lorekeep::fromUtf8(dir.path());
    for (auto _ : state) {
        window.editor.load(u"big", folder);
        if (!window.messages.shown.empty()) {
            state.SkipWithError("the file did not load");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * file.size()));
    state.counters["preview_chars"] = static_cast<double>(window.boxes[4].preview->text.size());
}

BENCHMARK(BM_LoadIntoWindow)->Unit(benchmark::kMillisecond);

}  // namespace
