#pragma once

#include <limits>
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

// Reads folder/name.sch and takes it apart; changes nothing anywhere. A file
// larger than `maxFileSize` bytes is refused without being read.
LoadResult loadSchema(TextView folder, TextView name, const ReaderOptions& options = {},
                      std::size_t maxFileSize = std::numeric_limits<std::size_t>::max());

}  // namespace lorekeep
