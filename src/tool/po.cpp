#include "tool/po.hpp"

#include <gettext-po.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <ostream>

#include "schema/schema_file.hpp"
#include "schema/windows1252.hpp"
#include "tool/markers.hpp"

namespace lorekeep::tool {

namespace {

// libgettextpo reports through handlers that get no data of the caller's:
// where the current call's messages go, and where a fatal error continues
// (the handler must not return from one). One call at a time.
struct Reporting {
    std::ostream* out = nullptr;
    int errors = 0;
    std::jmp_buf* fatal = nullptr;
};
Reporting gReporting;

void report(int severity, const char* filename, std::size_t line, const char* text) {
    std::string message = text != nullptr ? text : "";
    while (!message.empty() && message.back() == '\n') {
        message.pop_back();
    }
    std::replace(message.begin(), message.end(), '\n', ' ');
    *gReporting.out << "lorekeep-tool: ";
    if (filename != nullptr) {
        *gReporting.out << filename << ":";
        if (line != static_cast<std::size_t>(-1)) {
            *gReporting.out << line << ":";
        }
        *gReporting.out << " ";
    }
    *gReporting.out << (severity == PO_SEVERITY_WARNING ? "warning: " : "") << message << "\n";
    gReporting.errors += severity == PO_SEVERITY_WARNING ? 0 : 1;
}

void xerror(int severity, po_message_t, const char* filename, std::size_t line, std::size_t, int,
            const char* text) {
    report(severity, filename, line, text);
    if (severity == PO_SEVERITY_FATAL_ERROR) {
        std::longjmp(*gReporting.fatal, 1);  // nothing here needs destroying
    }
}

void xerror2(int severity, po_message_t, const char* filename1, std::size_t line1, std::size_t, int,
             const char* text1, po_message_t, const char* filename2, std::size_t line2, std::size_t,
             int, const char* text2) {
    report(severity, filename1, line1, text1);
    xerror(severity, nullptr, filename2, line2, 0, 0, text2);
}

const po_xerror_handler kHandler{xerror, xerror2};

// Sends libgettextpo's messages to `out` while it lives.
class ReportTo {
  public:
    explicit ReportTo(std::ostream& out) { gReporting = {&out, 0, nullptr}; }
    ~ReportTo() { gReporting = {}; }
    ReportTo(const ReportTo&) = delete;
    ReportTo& operator=(const ReportTo&) = delete;
    int errors() const { return gReporting.errors; }
};

// The library's calls that may end in a fatal error, which comes back here.
po_file_t readPoFile(const char* path) {
    std::jmp_buf fatal;
    gReporting.fatal = &fatal;
    if (setjmp(fatal) != 0) {
        return nullptr;
    }
    return po_file_read(path, &kHandler);
}

bool writePoFile(po_file_t file, const char* path) {
    std::jmp_buf fatal;
    gReporting.fatal = &fatal;
    if (setjmp(fatal) != 0) {
        return false;
    }
    po_file_write(file, path, &kHandler);
    return true;
}

struct PoFileFree {
    void operator()(po_file* file) const { po_file_free(file); }
};
struct IteratorFree {
    void operator()(po_message_iterator_t iterator) const { po_message_iterator_free(iterator); }
};
using PoFile = std::unique_ptr<po_file, PoFileFree>;
using Iterator = std::unique_ptr<struct po_message_iterator, IteratorFree>;

// A header field's value, or nothing when the header lacks it.
std::optional<std::string> headerField(const char* header, const char* field) {
    char* value = header != nullptr ? po_header_field(header, field) : nullptr;
    if (value == nullptr) {
        return std::nullopt;
    }
    std::string copy = value;
    std::free(value);
    return copy;
}

enum class Field { Title, Body };
constexpr std::array<std::pair<Field, std::string_view>, 2> kFields{
    {{Field::Title, "title"}, {Field::Body, "body"}}};

// A field of a document, const or not.
template <class Document>
auto& fieldOf(Document& document, Language language, Field field) {
    auto& entry = document.entry(language);
    return field == Field::Title ? entry.title : entry.body;
}

std::string keepComment(TextView english) {
    const std::vector<Text> markers = markersIn(english);
    std::string comment;
    for (const Text& marker : markers) {
        comment += (comment.empty() ? "Keep these markers: " : " ") + toUtf8(marker);
    }
    return comment;
}

// UTF-8 for a message on one line: real line breaks shown as "↵".
std::string oneLine(TextView text) {
    std::string line;
    for (const char c : toUtf8(text)) {
        line += c == '\n' || c == '\r' ? std::string("\u21b5") : std::string(1, c);
    }
    return line;
}

std::string markerList(const std::vector<Text>& markers) {
    std::string list;
    for (const Text& marker : markers) {
        if (!list.empty()) {
            list += ' ';
        }
        list += oneLine(marker);
    }
    return list;
}

// Nothing when the translation keeps the English text's markers in order;
// otherwise what differs.
std::optional<std::string> markerProblem(TextView english, TextView translation) {
    std::vector<Text> expected = markersIn(english);
    std::vector<Text> found = markersIn(translation);
    if (expected == found) {
        return std::nullopt;
    }
    std::ranges::sort(expected);
    std::ranges::sort(found);
    std::vector<Text> missing;
    std::vector<Text> extra;
    std::ranges::set_difference(expected, found, std::back_inserter(missing));
    std::ranges::set_difference(found, expected, std::back_inserter(extra));
    if (missing.empty() && extra.empty()) {
        return "the markers stand in another order than in the English";
    }
    std::string problem = "the markers differ from the English:";
    if (!missing.empty()) {
        problem.append(" missing ").append(markerList(missing));
    }
    if (!missing.empty() && !extra.empty()) {
        problem += ';';
    }
    if (!extra.empty()) {
        problem.append(" extra ").append(markerList(extra));
    }
    return problem;
}

// Nothing when Windows-1252 holds every character; otherwise the first that it cannot.
std::optional<std::string> unencodable(TextView text) {
    if (decodeWindows1252(encodeWindows1252(text)) == text) {
        return std::nullopt;
    }
    for (std::size_t at = 0; at < text.size();) {
        const bool pair = text[at] >= 0xD800 && text[at] < 0xDC00 && at + 1 < text.size() &&
                          text[at + 1] >= 0xDC00 && text[at + 1] < 0xE000;
        const TextView character = text.substr(at, pair ? 2 : 1);
        if (decodeWindows1252(encodeWindows1252(character)) != character) {
            if (character[0] >= 0xD800 && character[0] < 0xE000 && !pair) {
                return "a byte that is not UTF-8 cannot be written in Windows-1252";
            }
            const char32_t code =
                pair ? 0x10000 + ((character[0] - 0xD800) << 10) + (character[1] - 0xDC00)
                     : character[0];
            char hex[16];
            std::snprintf(hex, sizeof hex, "U+%04X", static_cast<unsigned>(code));
            std::string problem(1, '"');
            problem.append(toUtf8(character)).append("\" (").append(hex);
            return problem.append(") cannot be written in Windows-1252");
        }
        at += character.size();
    }
    return std::nullopt;
}

// The window's Save writes folder + "/" + name + ".sch"; its folder box keeps
// the trailing separator.
void placeDocument(SchemaDocument& document, const std::filesystem::path& path) {
    const std::filesystem::path parent = path.has_parent_path() ? path.parent_path() : ".";
    document.folder = fromUtf8(parent.string()) + kPathSeparator;
    document.name = fromUtf8(path.stem().string());
}

// One schema file that entries of the PO file name.
struct Target {
    const SchemaFile* file = nullptr;
    int sameName = 0;  // how many of the paths have this name
    bool tried = false;
    std::optional<SchemaDocument> document;  // as loaded, with the accepted translations
    int changes = 0;                         // accepted translations not yet in the file
};

// Nothing when the translation is accepted and set in the target's document;
// otherwise why it is refused.
std::optional<std::string> apply(Target& target, Language language, Field field,
                                 const Text& english, const Text& translation) {
    if (target.sameName > 1) {
        return "several of the paths hold a schema with this name";
    }
    if (!target.tried) {
        target.tried = true;
        target.document = loadDocument(target.file->path);
        if (target.document) {
            placeDocument(*target.document, target.file->path);
        }
    }
    if (!target.document) {
        return "the schema file does not load";
    }
    if (fieldOf(*target.document, Language::English, field) != english) {
        return "the English text changed since export";
    }
    if (fieldOf(*target.document, language, field) == translation) {
        return std::nullopt;  // already in the file
    }
    if (auto problem = markerProblem(english, translation)) {
        return problem;
    }
    if (auto problem = unencodable(translation)) {
        return problem;
    }
    SchemaDocument trial = *target.document;
    fieldOf(trial, language, field) = translation;
    const auto back = documentAfterSave(trial);
    if (!back || back->entries != trial.entries || back->font != trial.font) {
        if (field == Field::Title && translation.find(u'>') != Text::npos) {
            return "a title cannot hold \">\": the file's title tag ends there";
        }
        return "the file's layout cannot carry this text: it would not load back the same";
    }
    ++target.changes;
    target.document = std::move(trial);
    return std::nullopt;
}

bool isUtf8(const std::optional<std::string>& contentType) {
    if (!contentType) {
        return false;
    }
    std::string lower = *contentType;
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
    const std::size_t at = lower.find("charset=");
    const std::size_t from = at == std::string::npos ? lower.size() : at + 8;
    const std::string charset = lower.substr(from, lower.find_first_of("; \t", from) - from);
    return charset == "utf-8" || charset == "ascii" || charset == "us-ascii";
}

std::string plural(int count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace

bool exportPo(const std::vector<SchemaFile>& files, Language language, bool templateOnly,
              const std::string& output, std::ostream& errors) {
    PoFile po(po_file_create());
    Iterator at(po_message_iterator(po.get(), nullptr));
    const std::string code = templateOnly ? "" : languageCode(language);
    po_message_t header = po_message_create();
    po_message_set_msgid(header, "");
    po_message_set_msgstr(header, ("Project-Id-Version: Lorekeep schemas\n"
                                   "PO-Revision-Date: \n"
                                   "Last-Translator: \n"
                                   "Language-Team: \n"
                                   "Language: " +
                                   code +
                                   "\n"
                                   "MIME-Version: 1.0\n"
                                   "Content-Type: text/plain; charset=UTF-8\n"
                                   "Content-Transfer-Encoding: 8bit\n")
                                      .c_str());
    po_message_insert(at.get(), header);
    for (const SchemaFile& file : files) {
        const auto document = loadDocument(file.path);
        if (!document) {
            errors << "lorekeep-tool: " << file.path.string() << ": does not load; left out\n";
            continue;
        }
        for (const auto& [field, fieldName] : kFields) {
            const Text& english = fieldOf(*document, Language::English, field);
            const Text& translation = fieldOf(*document, language, field);
            if (english.empty()) {
                continue;  // msgid "" is the header's
            }
            if (english.find(u'\0') != Text::npos || translation.find(u'\0') != Text::npos) {
                errors << "lorekeep-tool: " << file.path.string() << ": the " << fieldName
                       << " holds a NUL character, which a PO file cannot; left out\n";
                continue;
            }
            po_message_t message = po_message_create();
            po_message_set_msgctxt(message, (file.name + "|" + std::string(fieldName)).c_str());
            po_message_set_msgid(message, toUtf8(english).c_str());
            po_message_set_msgstr(
                message, templateOnly || translation == english ? "" : toUtf8(translation).c_str());
            po_message_add_filepos(message, file.name.c_str(), static_cast<std::size_t>(-1));
            po_message_set_extracted_comments(message, keepComment(english).c_str());
            po_message_insert(at.get(), message);
        }
    }
    ReportTo reporting(errors);
    if (!writePoFile(po.get(), output.c_str()) || reporting.errors() > 0) {
        errors << "lorekeep-tool: " << output << ": cannot be written\n";
        return false;
    }
    return true;
}

ImportCounts importPo(const std::string& poFile, const std::vector<SchemaFile>& files, bool dryRun,
                      std::ostream& out) {
    const ImportCounts refusedWhole{0, 1};
    PoFile po;
    {
        ReportTo reporting(out);
        po.reset(readPoFile(poFile.c_str()));
        if (!po || reporting.errors() > 0) {
            out << "lorekeep-tool: " << poFile
                << ": cannot be read as a PO file; nothing applied\n";
            return refusedWhole;
        }
    }
    const char* header = po_file_domain_header(po.get(), nullptr);
    if (!isUtf8(headerField(header, "Content-Type"))) {
        out << "lorekeep-tool: " << poFile
            << ": not in UTF-8 (convert it with msgconv --to-code=UTF-8); nothing applied\n";
        return refusedWhole;
    }
    const std::string code = headerField(header, "Language").value_or("");
    const auto language = languageFromCode(code);
    if (!language || *language == Language::English) {
        out << "lorekeep-tool: " << poFile << ": the header's Language "
            << (code.empty() ? "is missing" : "is " + code)
            << "; it must be fr, de or it; nothing applied\n";
        return refusedWhole;
    }

    std::map<std::string, Target> targets;
    for (const SchemaFile& file : files) {
        Target& target = targets[file.name];
        target.file = &file;
        ++target.sameName;
    }
    ImportCounts counts;
    for (const char* const* domain = po_file_domains(po.get()); *domain != nullptr; ++domain) {
        Iterator it(po_message_iterator(po.get(), *domain));
        while (po_message_t message = po_next_message(it.get())) {
            const char* context = po_message_msgctxt(message);
            const std::string msgstr = po_message_msgstr(message);
            if ((context == nullptr && *po_message_msgid(message) == '\0') ||
                po_message_is_obsolete(message) || msgstr.empty()) {
                continue;  // the header, an old entry or no translation
            }
            const std::string where = context != nullptr ? context : "(an entry without msgctxt)";
            if (po_message_is_fuzzy(message)) {
                out << where << ": skipped: marked fuzzy\n";
                continue;
            }
            std::optional<std::string> refusal;
            const std::size_t bar = where.rfind('|');
            const auto field = std::ranges::find(kFields, where.substr(bar + 1),
                                                 &std::pair<Field, std::string_view>::second);
            const auto target =
                bar == std::string::npos ? targets.end() : targets.find(where.substr(0, bar));
            if (context == nullptr || bar == std::string::npos || field == kFields.end()) {
                refusal = "not a schema's title or body (msgctxt \"<schema>|title\" or \"|body\")";
            } else if (target == targets.end()) {
                refusal = "no such schema among the paths";
            } else {
                refusal = apply(target->second, *language, field->first,
                                fromUtf8(po_message_msgid(message)), fromUtf8(msgstr));
            }
            if (refusal) {
                out << where << ": refused: " << *refusal << "\n";
                ++counts.refused;
            }
        }
    }

    for (auto& [name, target] : targets) {
        if (target.changes == 0) {
            continue;
        }
        const std::string translations = plural(target.changes, "translation");
        if (dryRun) {
            out << name << ": " << translations << " would be applied (dry run)\n";
        } else if (const FileResult saved = saveSchema(*target.document, SystemClock().now())) {
            out << name << ": " << translations << " applied\n";
        } else {
            out << name << ": refused: cannot be saved (" << saved.reason << "); " << translations
                << " not applied\n";
            counts.refused += target.changes;
            continue;
        }
        counts.applied += target.changes;
    }
    out << "lorekeep-tool: " << plural(counts.applied, "translation")
        << (dryRun ? " would be applied, " : " applied, ") << counts.refused << " refused\n";
    return counts;
}

}  // namespace lorekeep::tool
