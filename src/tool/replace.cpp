#include "tool/replace.hpp"

#include <algorithm>
#include <array>

#include "schema/date_stamp.hpp"
#include "schema/limits.hpp"
#include "schema/safe_file.hpp"
#include "schema/schema_file.hpp"
#include "schema/schema_reader.hpp"
#include "schema/schema_writer.hpp"

namespace lorekeep::tool {

namespace {

// Characters shown on each side of a match.
constexpr std::size_t kContext = 24;

// The match with a little of the text around it, on one line.
std::string context(TextView text, const search::Match& match) {
    const std::size_t from = match.start > kContext ? match.start - kContext : 0;
    const std::size_t to = std::min(text.size(), match.start + match.length + kContext);
    Text shown(text.substr(from, to - from));
    std::ranges::replace_if(
        shown, [](char16_t c) { return c < u' '; }, u' ');
    return (from > 0 ? "..." : "") + toUtf8(shown) + (to < text.size() ? "..." : "");
}

// A schema file as the window would load it, or why not.
struct Loaded {
    std::string bytes;
    SchemaRead read;
    std::optional<SchemaDocument> document;
    std::string problem;
};

// Says why on `err` when the file does not load.
Loaded load(const SchemaFile& file, std::ostream& err) {
    Loaded loaded;
    const LoadResult result = loadSchemaFile(file.path.string(), {}, &loaded.bytes);
    if (!result.ok) {
        loaded.problem = "cannot be read: " + result.reason;
    }
    loaded.read = result.read;
    if (result.ok && std::ranges::all_of(result.read.records, fitsTheWindow)) {
        loaded.document = documentAfterLoad(result.read);
    }
    if (!loaded.document) {
        loaded.problem = "does not load (lorekeep-tool check says why)";
    }
    if (!loaded.problem.empty()) {
        err << "lorekeep-tool: " << file.name << ": " << loaded.problem << "\n";
    }
    return loaded;
}

// Each file's document, in turn, for `use`; a file that does not load is
// skipped with its reason on `err`. Returns how many were skipped, plus
// what `use` counts as failed.
template <class Use>
int eachDocument(const std::vector<SchemaFile>& files, std::ostream& err, Use use) {
    int failed = 0;
    for (const SchemaFile& file : files) {
        const Loaded loaded = load(file, err);
        failed += loaded.document ? use(file, loaded) : 1;
    }
    return failed;
}

bool inScope(const SearchRequest& request, Language language) {
    return !request.language || *request.language == language;
}

}  // namespace

int findInSchemas(const std::vector<SchemaFile>& files, const SearchRequest& request,
                  std::ostream& out, std::ostream& err) {
    return eachDocument(files, err, [&](const SchemaFile& file, const Loaded& loaded) {
        for (const Language language : kAllLanguages) {
            const LanguageEntry& entry = loaded.document->entries[indexOf(language)];
            const std::pair<const char*, const Text*> fields[] = {
                {"title", request.titles ? &entry.title : nullptr}, {"body", &entry.body}};
            for (const auto& [field, text] : fields) {
                if (text == nullptr || !inScope(request, language)) {
                    continue;
                }
                for (const search::Match& match :
                     search::findAll(*text, request.find, request.options)) {
                    out << file.name << ": " << languageCode(language) << " " << field << " "
                        << match.start << ": " << context(*text, match) << "\n";
                }
            }
        }
        return 0;
    });
}

int replaceInSchemas(const std::vector<SchemaFile>& files, const SearchRequest& request,
                     std::ostream& out, std::ostream& err) {
    const LocalDateTime stamp = SystemClock().now();
    return eachDocument(files, err, [&](const SchemaFile& file, const Loaded& loaded) {
        SchemaDocument changed = *loaded.document;
        std::array<bool, kLanguageCount> rewrite{};
        std::size_t count = 0;
        std::string refused;
        for (const Language language : kAllLanguages) {
            LanguageEntry& entry = changed.entries[indexOf(language)];
            const std::pair<Text*, std::size_t> fields[] = {
                {request.titles ? &entry.title : nullptr, kMaxTitleLength},
                {&entry.body, kMaxBodyLength}};
            for (const auto& [text, limit] : fields) {
                if (text == nullptr || !inScope(request, language)) {
                    continue;
                }
                const std::vector<search::Match> matches =
                    search::findAll(*text, request.find, request.options);
                if (matches.empty()) {
                    continue;
                }
                // Checked before the new text is built, which may be too long to build.
                if (search::lengthAfterReplacing(text->size(), matches, request.with) > limit) {
                    refused = "the " + languageCode(language) +
                              " text would be longer than the window's limit of " +
                              std::to_string(limit) + " characters";
                    continue;
                }
                *text = search::replaceMatches(*text, matches, request.with).text;
                rewrite[indexOf(language)] = true;
                count += matches.size();
            }
        }
        if (!refused.empty()) {
            err << "lorekeep-tool: " << file.name << ": not changed: " << refused << "\n";
            return 1;
        }
        if (count == 0) {
            return 0;
        }
        const std::string bytes =
            rewriteRecords(loaded.bytes, loaded.read, changed, rewrite, stamp);
        const auto back = documentAfterLoad(readSchema(bytes));
        if (bytes.size() > maxSchemaFileSize() || !back || back->entries != changed.entries) {
            err << "lorekeep-tool: " << file.name
                << ": not changed: the file cannot carry the new text (it would not load back the "
                   "same)\n";
            return 1;
        }
        if (!request.dryRun) {
            if (const ReplaceResult saved =
                    replaceFileContents(file.path.string(), bytes, &loaded.bytes);
                !saved) {
                err << "lorekeep-tool: " << file.name << ": cannot be written: " << saved.error
                    << "\n";
                return 1;
            }
        }
        out << file.name << ": " << count
            << (request.dryRun ? " would be replaced\n" : " replaced\n");
        return 0;
    });
}

}  // namespace lorekeep::tool
