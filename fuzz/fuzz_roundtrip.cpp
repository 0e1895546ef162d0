// An arbitrary document written as a schema file and read back: every field
// that the format can carry (no comma, double quote, ">" or line break) comes
// back unchanged.
#include <cstdlib>

#include "document/schema_reader.hpp"
#include "document/schema_writer.hpp"
#include "document/windows1252.hpp"
#include "markup/markers.hpp"
#include "support/fake_window.hpp"

using namespace lorekeep;

namespace {

bool Carriable(const Text& field) {
    return field.find_first_of(u",\">\r\n") == Text::npos;
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
            fields[field] += DecodeWindows1252(std::string_view(&byte, 1));
        }
    }
    SchemaDocument doc;
    for (int i = 0; i < kLanguageCount; ++i) {
        doc.entries[i] = {fields[i], fields[4 + i]};
    }
    doc.font = fields[8];
    doc.name = u"fuzz";

    testing::FakeWindow w;
    const LoadTargets targets = w.LoadTargetsOf();
    const std::string bytes = ComposeSchemaBytes(doc, LocalDateTime{2005, 3, 14, 14, 5, 9});
    const bool loaded = LoadFromBytes(bytes, targets);

    bool carriable = Carriable(doc.font);
    for (const auto& entry : doc.entries) {
        carriable = carriable && Carriable(entry.title) && Carriable(entry.body) &&
                    // with no title tag written, a body opening with one is read as one
                    !(entry.title.empty() && entry.body.starts_with(markup::kTitleOpen));
    }
    if (!carriable) {
        return 0;  // such a document need not survive; it must only not crash
    }
    if (!loaded) {
        std::abort();
    }
    for (int i = 0; i < kLanguageCount; ++i) {
        if (w.txtTitle[i].text != doc.entries[i].title ||
            w.rtbText[i].PlainText() != doc.entries[i].body) {
            std::abort();
        }
    }
    // A listed font may come back in the list's own letter case.
    if (w.cboFont.selected < 0 && w.cboFont.text != doc.font) {
        std::abort();
    }
    if (w.cboFont.selected >= 0 && w.cboFont.text.size() != doc.font.size()) {
        std::abort();
    }
    return 0;
}
