#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "schema/language.hpp"
#include "tool/schema_set.hpp"

// Translations in PO files, read and written with GNU gettext's libgettextpo.
namespace lorekeep::tool {

// The largest PO file that import reads.
inline constexpr std::size_t kMaxPoFileSize = std::size_t{1} << 30;

// Writes one entry per schema, field (title, body) and non-empty English
// text: msgctxt "<name>|title" or "<name>|body", msgid the English text,
// msgstr the language's text (empty when it equals the English, or for a
// template), a "#:" reference to the file and a comment listing the markers
// (and real line breaks) to keep. A name that is not valid UTF-8 is written
// with \xHH escapes (a backslash as \\), which import reads back. Files
// that do not load are reported on `errors` and left out. The output ("-":
// `out`) is written as writeOutput writes; returns false when it cannot be.
bool exportPo(const std::vector<SchemaFile>& files, Language language, bool templateOnly,
              const std::string& output, std::ostream& out, std::ostream& errors);

struct ImportCounts {
    int applied = 0;  // translations written (or, dry, that would be)
    int refused = 0;  // entries refused, each with its message; a PO file refused whole counts 1
};

// Writes each translated msgstr back into its schema's field for the
// language of the PO file's header, through the window's safe save. Only the
// record of that language is written anew, with a new date stamp; the header
// lines and the other records keep their bytes, and files with no change are
// not touched. Each file is saved once, however many names lead to it, and
// never over a change saved after it was read (it is then read again).
// Empty msgstrs, and translations already in the file, change nothing; fuzzy
// entries are skipped with a note. Refuses, per entry, a translation whose
// markers or real line breaks differ from the English, a title with a line
// break, an English text that no longer matches the file, a plural entry,
// and text the file cannot hold (a character outside Windows-1252, beyond
// the window's limits, or one that would not load back the same); the other
// entries still apply. Refuses the whole PO file when it cannot be read (it
// must be a regular file of at most kMaxPoFileSize bytes), is not UTF-8 or
// names no language other than English. Reports on `out`.
ImportCounts importPo(const std::string& poFile, const std::vector<SchemaFile>& files, bool dryRun,
                      std::ostream& out);

}  // namespace lorekeep::tool
