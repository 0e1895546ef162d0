#pragma once

#include <string>

#include "schema/date_stamp.hpp"
#include "schema/schema_document.hpp"
#include "schema/schema_reader.hpp"

namespace lorekeep {

// How a file operation ended: `reason` says why it failed, for diagnostics;
// what the user is told is the caller's business.
struct FileResult {
    bool ok = false;
    std::string reason;

    explicit operator bool() const { return ok; }
};

// The largest schema file that the window saves, and so the largest it
// reads: every field at its limit.
std::size_t maxSchemaFileSize();

// Whether a record's fields fit the boxes that show them.
bool fitsTheWindow(const RecordRead& record);

// The file that folder/name.sch names. Where it does not exist but exactly
// one file of that name with ".sch" in other letter case does (TOWER.SCH,
// as a mod from a system that ignores case may bring it), that one: so the
// schema that opened is the one that saves.
std::string schemaFilePath(TextView folder, TextView name);

// Writes the document to document.folder/document.name.sch with the given
// stamp in every record. The whole file is encoded first and replaces the old
// one only once it is safely on disk: a failed save leaves any existing file
// exactly as it was.
FileResult saveSchema(const SchemaDocument& document, const LocalDateTime& stamp);

struct LoadResult {
    bool ok = false;     // the file was read and every language taken apart
    std::string reason;  // why not, for diagnostics
    SchemaRead read;     // what it holds, as far as it could be read
};

// Reads the file at `path` (UTF-8) and takes it apart; changes nothing
// anywhere. A file larger than the window saves is refused without being
// read. `bytes`, when given, receives the file as read.
LoadResult loadSchemaFile(const std::string& path, const ReaderOptions& options = {},
                          std::string* bytes = nullptr);

}  // namespace lorekeep
