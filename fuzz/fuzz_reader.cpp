// Arbitrary bytes as a schema file, taken apart in memory by the reader as the
// window reads them and in the older layout only. Whatever the bytes, the read
// holds at most four records, stops at its first unreadable one, names fonts
// consistently, a record length limit only ever fails the read as a whole, and
// a file without a backslash, so without the writer's layout, reads the same in
// both layouts; the checker of lorekeep-tool takes them too.
#include <algorithm>
#include <cstdlib>

#include "schema/schema_document.hpp"
#include "schema/schema_reader.hpp"
#include "tool/check.hpp"

using namespace lorekeep;

namespace {

void check(const SchemaRead& read) {
    if (read.records.size() > kLanguageCount) {
        std::abort();
    }
    for (std::size_t k = 0; k + 1 < read.records.size(); ++k) {
        if (!read.records[k].body) {
            std::abort();  // the read goes on only behind a readable record
        }
    }
    const bool everyBody = std::all_of(read.records.begin(), read.records.end(),
                                       [](const RecordRead& record) { return record.body; });
    if (read.complete() != (read.records.size() == kLanguageCount && everyBody) ||
        read.complete() != (read.problem == ReadProblem::None)) {
        std::abort();  // a read that stops says by which rule, and only then
    }
    for (const RecordRead& record : read.records) {
        const auto& font = record.font;
        if (font && (font->entry < -1 || font->entry >= static_cast<int>(kFontNames.size()) ||
                     (font->entry >= 0 && font->text != kFontNames[font->entry]))) {
            std::abort();
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const SchemaRead read = readSchema(bytes);
    check(read);
    const SchemaRead older = readSchema(bytes, ReaderOptions{false});
    check(older);
    // Widening the reader to the writer's layout changes nothing for a file
    // that cannot hold a record in that layout: it takes a separator, "\n",
    // even once commas and line ends have joined the fields.
    if (bytes.find('\\') == std::string_view::npos && older.records != read.records) {
        std::abort();
    }
    // lorekeep-tool check takes the same bytes: a file that does not load is
    // one error and nothing else.
    const auto findings = tool::checkSchema(bytes, "f.sch");
    if (!read.complete() &&
        (findings.empty() || findings.back().severity != tool::Severity::Error)) {
        std::abort();
    }
    return 0;
}
