// An arbitrary document written as a schema file and read back: every field
// that the format can carry (no comma, double quote, ">" or line break) comes
// back unchanged, a listed font possibly in the list's own letter case.
#include <cstdlib>

#include "markup/markers.hpp"
#include "schema/schema_reader.hpp"
#include "schema/schema_writer.hpp"
#include "schema/windows1252.hpp"

using namespace lorekeep;

namespace {

bool carriable(const Text& field) {
    return field.find_first_of(u",\">\r\n") == Text::npos;
}

// Font names are ASCII: folding ASCII letters is all that comparing them
// ignoring case needs.
Text folded(TextView text) {
    Text out(text);
    for (char16_t& c : out) {
        if (c >= u'A' && c <= u'Z') {
            c = static_cast<char16_t>(c + 0x20);
        }
    }
    return out;
}

int listedEntry(const Text& font) {
    for (std::size_t k = 0; k < kFontNames.size(); ++k) {
        if (folded(font) == folded(kFontNames[k])) {
            return static_cast<int>(k);
        }
    }
    return -1;
}

}  // namespace

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

    bool carried = carriable(doc.font);
    for (const auto& entry : doc.entries) {
        carried = carried && carriable(entry.title) && carriable(entry.body) &&
                  // with no title tag written, a body opening with one is read as one
                  !(entry.title.empty() && entry.body.starts_with(markup::kTitleOpen));
    }
    if (!carried) {
        return 0;  // such a document need not survive; it must only not crash
    }
    if (!read.complete()) {
        std::abort();
    }
    const int entry = listedEntry(doc.font);
    const FontChoice expectedFont{entry, entry < 0 ? doc.font : Text(kFontNames[entry])};
    for (int i = 0; i < kLanguageCount; ++i) {
        const RecordRead& record = read.records[i];
        if (record.title != doc.entries[i].title || record.body != doc.entries[i].body ||
            record.font != expectedFont) {
            std::abort();
        }
    }
    return 0;
}
