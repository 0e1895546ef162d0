#include <benchmark/benchmark.h>

#include "schema/schema_writer.hpp"

namespace {

using lorekeep::Language;

// Encoding a whole schema with four bodies of the given length, the part of a
// save that grows with the text.
void BM_ComposeSchemaBytes(benchmark::State& state) {
    lorekeep::SchemaDocument doc;
    doc.font = u"Papyrus14";
    const auto length = static_cast<std::size_t>(state.range(0));
    for (Language language : lorekeep::kAllLanguages) {
        doc.entry(language) = {u"Title é", lorekeep::Text(length, u'é')};
    }
    const lorekeep::LocalDateTime stamp{2005, 3, 14, 14, 5, 9};
    for (auto _ : state) {
        benchmark::DoNotOptimize(lorekeep::composeSchemaBytes(doc, stamp));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 4 *
                            static_cast<int64_t>(length));
}
BENCHMARK(BM_ComposeSchemaBytes)->Arg(32767)->Arg(1 << 20);

}  // namespace
