#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "schema/language.hpp"
#include "tool/schema_set.hpp"

// Translations in PO files, read and written with GNU gettext's libgettextpo.
namespace lorekeep::tool {

// Writes one entry per schema, field (title, body) and non-empty English
// text: msgctxt "<name>|title" or "<name>|body", msgid the English text,
// msgstr the language's text (empty when it equals the English, or for a
// template), a "#:" reference to the file and a comment listing the markers
// to keep. Files that do not load are reported on `errors` and left out.
// Returns false when the PO file cannot be written.
bool exportPo(const std::vector<SchemaFile>& files, Language language, bool templateOnly,
              const std::string& output, std::ostream& errors);

struct ImportCounts {
    int applied = 0;  // translations written (or, dry, that would be)
    int refused = 0;  // entries refused, each with its message; a PO file refused whole counts 1
};

// Writes each translated msgstr back into its schema's field for the
// language of the PO file's header, through the window's safe save (the
// window's bytes but for the date stamp); files with no change are not
// touched. Empty msgstrs, and translations already in the file, change
// nothing; fuzzy entries are skipped with a note. Refuses, per entry, a
// translation whose markers differ from the English, an English text that no
// longer matches the file, and text the file cannot hold (a character outside
// Windows-1252, or one that would not load back the same); the other entries
// still apply. Refuses the whole PO file when it cannot be read, is not
// UTF-8 or names no language other than English. Reports on `out`.
ImportCounts importPo(const std::string& poFile, const std::vector<SchemaFile>& files, bool dryRun,
                      std::ostream& out);

}  // namespace lorekeep::tool
