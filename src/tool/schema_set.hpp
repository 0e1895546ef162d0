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

// The language codes of the command line and of PO files, in language order.
inline constexpr std::array<std::string_view, kLanguageCount> kLanguageCodes{"en", "fr", "de",
                                                                             "it"};

inline std::string languageCode(Language language) {
    return std::string(kLanguageCodes[indexOf(language)]);
}

// "fr", or a PO file's "fr_FR": the language whose code it starts with.
std::optional<Language> languageFromCode(std::string_view code);

struct SchemaFile {
    std::filesystem::path path;  // as found: the given path, or below a given folder
    std::string name;  // relative to the folder given, with '/' ("quests/intro.sch"); a file
                       // given by itself is named by its file name
};

// Each path is a .sch file or a folder searched recursively for *.sch, in
// name order. Paths that do not exist, and files that are not .sch, are
// reported in `problems` (one line each) and skipped.
std::vector<SchemaFile> findSchemas(const std::vector<std::string>& paths,
                                    std::vector<std::string>& problems);

// The whole file, or nothing when it cannot be read.
std::optional<std::string> readBytes(const std::filesystem::path& path);

// The document that the window holds after loading `read` into a fresh
// window: the font box "Font" and empty titles unless the file sets them.
// Nothing when the load fails.
std::optional<SchemaDocument> documentAfterLoad(const SchemaRead& read);

// The same for the file at `path`; nothing when it cannot be read or loaded.
std::optional<SchemaDocument> loadDocument(const std::filesystem::path& path);

// What a fresh window loads from the file that saving `document` writes:
// where it differs from `document`, the file cannot carry the text.
std::optional<SchemaDocument> documentAfterSave(const SchemaDocument& document);

}  // namespace lorekeep::tool
