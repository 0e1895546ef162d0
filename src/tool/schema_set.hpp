#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "schema/schema_document.hpp"
#include "schema/schema_reader.hpp"

// The schema files that a command works on, and what a fresh window would
// hold after loading one of them.
namespace lorekeep::tool {

inline std::string languageCode(Language language) {
    return std::string(infoOf(language).code);
}

// One schema file, however many names the paths reach it by.
struct SchemaFile {
    std::filesystem::path path;  // as first found: the given path, or below a given folder
    std::string name;  // relative to the folder given, with '/' ("quests/intro.sch"); a file
                       // given by itself is named by its file name
    std::vector<std::string> otherNames;  // the same file reached again (a link, overlapping
                                          // paths), by the names it had there
};

// Something in the paths that is not worked on, and why.
struct PathProblem {
    std::string path;
    std::string message;
};

// Each path is a .sch file (in any letter case) or a folder searched
// recursively for them, in name order; a file reached more than once is
// listed once. Paths that do not exist, folders that cannot be read, and
// *.sch entries that are not regular files are reported in `problems`.
std::vector<SchemaFile> findSchemas(const std::vector<std::string>& paths,
                                    std::vector<PathProblem>& problems);

// The whole file through the window's bounded reader (a regular file no
// larger than the window reads), or nothing with the reason in `error`.
std::optional<std::string> readSchemaBytes(const std::filesystem::path& path,
                                           std::string* error = nullptr);

// The document that the window holds after loading `read` into a fresh
// window: the font box "Font" and empty titles unless the file sets them.
// Nothing when the load fails.
std::optional<SchemaDocument> documentAfterLoad(const SchemaRead& read);

// The same for the file at `path`; nothing when it cannot be read or loaded.
std::optional<SchemaDocument> loadDocument(const std::filesystem::path& path);

// What a fresh window loads from the file that saving `document` writes:
// where it differs from `document`, the file cannot carry the text.
std::optional<SchemaDocument> documentAfterSave(const SchemaDocument& document);

// Writes a command's output file: "-" is standard output (`out`), a FIFO or
// a device is written straight, and a file is replaced as the window saves
// one, only once every byte is safely on disk. False, with the reason on
// `err` naming the file, when it cannot be written.
bool writeOutput(const std::string& path, std::string_view bytes, std::ostream& out,
                 std::ostream& err);

}  // namespace lorekeep::tool
