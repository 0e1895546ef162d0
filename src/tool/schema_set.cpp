#include "tool/schema_set.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "schema/schema_writer.hpp"

namespace lorekeep::tool {

namespace fs = std::filesystem;

namespace {

bool isSchema(const fs::path& path) {
    return path.extension() == ".sch";
}

}  // namespace

std::optional<Language> languageFromCode(std::string_view code) {
    for (Language language : kAllLanguages) {
        const std::string_view known = kLanguageCodes[indexOf(language)];
        if (code.substr(0, known.size()) == known &&
            (code.size() == known.size() || code[known.size()] == '_' ||
             code[known.size()] == '-' || code[known.size()] == '.')) {
            return language;
        }
    }
    return std::nullopt;
}

std::vector<SchemaFile> findSchemas(const std::vector<std::string>& paths,
                                    std::vector<std::string>& problems) {
    std::vector<SchemaFile> found;
    for (const std::string& given : paths) {
        const fs::path root(given);
        std::error_code error;
        if (fs::is_directory(root, error)) {
            std::vector<SchemaFile> inFolder;
            fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied,
                                                error);
            for (; !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
                if (isSchema(it->path()) && it->is_regular_file(error)) {
                    inFolder.push_back(
                        {it->path(), it->path().lexically_relative(root).generic_string()});
                }
            }
            if (error) {
                problems.push_back(given + ": " + error.message());
            }
            std::ranges::sort(inFolder, {}, &SchemaFile::name);
            found.insert(found.end(), inFolder.begin(), inFolder.end());
        } else if (fs::is_regular_file(root, error) && isSchema(root)) {
            found.push_back({root, root.filename().generic_string()});
        } else if (fs::exists(root, error)) {
            problems.push_back(given + ": not a .sch file or a folder");
        } else {
            problems.push_back(given + ": no such file or folder");
        }
    }
    return found;
}

std::optional<std::string> readBytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream bytes;
    bytes << file.rdbuf();
    if (file.bad()) {
        return std::nullopt;
    }
    return std::move(bytes).str();
}

std::optional<SchemaDocument> documentAfterLoad(const SchemaRead& read) {
    if (!read.complete()) {
        return std::nullopt;
    }
    SchemaDocument document;
    document.font = u"Font";  // the font box's text in a fresh window
    for (std::size_t i = 0; i < read.records.size(); ++i) {
        const RecordRead& record = read.records[i];
        if (record.font) {
            document.font = record.font->text;  // the last record that names a font wins
        }
        if (record.title) {
            document.entries[i].title = *record.title;
        }
        document.entries[i].body = *record.body;
    }
    return document;
}

std::optional<SchemaDocument> loadDocument(const fs::path& path) {
    const auto bytes = readBytes(path);
    return bytes ? documentAfterLoad(readSchema(*bytes)) : std::nullopt;
}

std::optional<SchemaDocument> documentAfterSave(const SchemaDocument& document) {
    return documentAfterLoad(readSchema(composeSchemaBytes(document, LocalDateTime{})));
}

}  // namespace lorekeep::tool
