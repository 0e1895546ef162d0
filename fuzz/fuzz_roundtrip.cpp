// An arbitrary document written as a schema file and read back: a document
// that the format can carry comes back exactly, titles, bodies and the font.
#include <algorithm>
#include <cstdlib>

#include "schema/schema_reader.hpp"
#include "schema/schema_writer.hpp"
#include "schema/windows1252.hpp"
#include "support/test_support.hpp"

using namespace lorekeep;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Nine fields separated by byte 0xFF: four titles, four bodies, the font.
    std::array<Text, 9> fields;
    std::size_t field = 0;
    for (std::size_t k = 0; k < size && field < fields.size(); ++k) {
        if (data[k] == 0xFF) {
            ++field;
        } else {
            const char byte = static_cast<char>(data[k]);
            fields[field] += decodeWindows1252(std::string_view(&byte, 1));
        }
    }
    SchemaDocument doc;
    for (int i = 0; i < kLanguageCount; ++i) {
        doc.entries[i] = {fields[i], fields[4 + i]};
    }
    doc.font = fields[8];
    doc.name = u"fuzz";

    const SchemaRead read =
        readSchema(composeSchemaBytes(doc, LocalDateTime{2005, 3, 14, 14, 5, 9}));

    if (!testing::formatCarries(doc)) {
        return 0;  // such a document need not survive; it must only not crash
    }
    if (!read.complete()) {
        std::abort();
    }
    // Only an exact list name selects its entry; the text is the font as saved.
    const auto listed = std::find(kFontNames.begin(), kFontNames.end(), doc.font);
    const FontChoice expectedFont{
        listed == kFontNames.end() ? -1 : static_cast<int>(listed - kFontNames.begin()), doc.font};
    for (int i = 0; i < kLanguageCount; ++i) {
        const RecordRead& record = read.records[i];
        if (record.title != doc.entries[i].title || record.body != doc.entries[i].body ||
            record.font != expectedFont) {
            std::abort();
        }
    }
    return 0;
}
