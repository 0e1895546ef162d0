#include "document/save.hpp"

#include "document/messages.hpp"
#include "document/safe_file.hpp"
#include "document/schema_writer.hpp"

namespace lorekeep {

namespace {

bool TrySave(TextView SchemaName, TextView filename, const DocumentSource& source,
             const Clock& clock) {
    // One reading of the clock for the whole file: all four records carry
    // the same stamp.
    const LocalDateTime stamp = clock.Now();
    SchemaDocument document;
    document.name = Text(SchemaName);
    document.folder = Text(filename);
    document.font = source.Font();
    for (Language language : kAllLanguages) {
        document.entry(language) = {source.Title(language), source.Body(language)};
    }
    // The whole file is encoded before anything touches the disk.
    const std::string bytes = ComposeSchemaBytes(document, stamp);
    return ReplaceFileContents(ToUtf8(SchemaPath(filename, SchemaName)), bytes);
}

}  // namespace

void Save(TextView SchemaName, TextView filename, const DocumentSource& source, const Clock& clock,
          MessageBox& messages) {
    bool saved = false;
    try {
        saved = TrySave(SchemaName, filename, source, clock);
    } catch (...) {
        // Out of memory for a huge body, or a control that failed to answer:
        // the same single message as any other failure.
        saved = false;
    }
    if (!saved) {
        messages.ShowMessage(texts::kSaveFailed, texts::kProgramTitle);
    }
}

}  // namespace lorekeep
