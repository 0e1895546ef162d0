#include "tool/po.hpp"

#include <gettext-po.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <sstream>

#include "schema/file_reader.hpp"
#include "schema/limits.hpp"
#include "schema/safe_file.hpp"
#include "schema/schema_file.hpp"
#include "schema/schema_writer.hpp"
#include "schema/windows1252.hpp"
#include "tool/markers_to_keep.hpp"

namespace lorekeep::tool {

namespace {

// libgettextpo reports through handlers that get no data of the caller's:
// where the current call's messages go, what the file it works on is called,
// and where a fatal error continues (the handler must not return from one).
// One call at a time.
struct Reporting {
    std::ostream* out = nullptr;
    int errors = 0;
    std::jmp_buf* fatal = nullptr;
    std::string fileName;   // the library's name for the file (a file in memory)
    std::string shownName;  // the user's name for it
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
        *gReporting.out << (filename == gReporting.fileName ? gReporting.shownName : filename)
                        << ":";
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

// Sends libgettextpo's messages about the file it knows as `fileName` to
// `out` under the name `shownName` while it lives.
class ReportTo {
  public:
    ReportTo(std::ostream& out, std::string fileName, std::string shownName) {
        gReporting = {&out, 0, nullptr, std::move(fileName), std::move(shownName)};
    }
    ~ReportTo() { gReporting = {}; }
    ReportTo(const ReportTo&) = delete;
    ReportTo& operator=(const ReportTo&) = delete;
    int errors() const { return gReporting.errors; }
};

// A file in memory under a name that libgettextpo, which reads and writes
// only named files, can open: it then parses exactly the bytes that the
// bounded reader took, and what it writes is checked before any file on disk
// is touched.
class MemoryFile {
  public:
    MemoryFile() : m_fd(memfd_create("lorekeep-po", MFD_CLOEXEC)) {}
    ~MemoryFile() {
        if (m_fd >= 0) {
            close(m_fd);
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    bool usable() const { return m_fd >= 0 && access(name().c_str(), R_OK | W_OK) == 0; }
    std::string name() const { return "/proc/self/fd/" + std::to_string(m_fd); }

    bool write(std::string_view bytes) const {
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t n =
                pwrite(m_fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
            if (n <= 0 && errno != EINTR) {
                return false;
            }
            done += n > 0 ? static_cast<std::size_t>(n) : 0;
        }
        return true;
    }

    std::optional<std::string> contents() const {
        struct stat st {};
        if (fstat(m_fd, &st) != 0) {
            return std::nullopt;
        }
        std::string bytes(static_cast<std::size_t>(st.st_size), '\0');
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t n =
                pread(m_fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
            if (n <= 0 && errno != EINTR) {
                return std::nullopt;
            }
            done += n > 0 ? static_cast<std::size_t>(n) : 0;
        }
        return bytes;
    }

  private:
    int m_fd;
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

// A file name as PO contexts and references carry it: valid UTF-8 on one
// line whatever the name's bytes. A byte that is not part of valid UTF-8, and
// a control character, is written as \xHH, a backslash as \\.
std::string escapeName(const std::string& name) {
    std::string escaped;
    const Text decoded = fromUtf8(name);  // invalid bytes as U+DC80 + (byte - 0x80)
    for (std::size_t k = 0; k < decoded.size(); ++k) {
        const char16_t c = decoded[k];
        const bool pair = c >= 0xD800 && c < 0xDC00 && k + 1 < decoded.size() &&
                          decoded[k + 1] >= 0xDC00 && decoded[k + 1] < 0xE000;
        if (c == u'\\') {
            escaped += "\\\\";
        } else if (c < 0x20 || c == 0x7F || (c >= 0xDC80 && c <= 0xDCFF)) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(c & 0xFF));
            escaped += hex;
        } else {
            escaped += toUtf8(TextView(decoded).substr(k, pair ? 2 : 1));
            k += pair ? 1 : 0;
        }
    }
    return escaped;
}

// The inverse of escapeName. A backslash that starts no escape stays itself.
std::string unescapeName(std::string_view escaped) {
    std::string name;
    for (std::size_t k = 0; k < escaped.size(); ++k) {
        const std::string_view rest = escaped.substr(k);
        if (rest.starts_with("\\\\")) {
            name += '\\';
            ++k;
        } else if (rest.size() >= 4 && rest.starts_with("\\x") &&
                   std::isxdigit(static_cast<unsigned char>(rest[2])) != 0 &&
                   std::isxdigit(static_cast<unsigned char>(rest[3])) != 0) {
            name += static_cast<char>(std::stoi(std::string(rest.substr(2, 2)), nullptr, 16));
            k += 3;
        } else {
            name += escaped[k];
        }
    }
    return name;
}

std::string keepComment(TextView english) {
    const std::vector<Text> markers = markersToKeep(english);
    std::string comment;
    for (const Text& marker : markers) {
        comment += (comment.empty() ? "Keep these markers: " : " ") + toUtf8(marker);
    }
    const auto breaks = std::ranges::count(markersToKeep(english, true), Text(u"\n"));
    if (breaks > 0) {
        comment += (comment.empty() ? "" : ". ") + std::string("Keep its ") +
                   std::to_string(breaks) + " real line break" + (breaks == 1 ? "" : "s") + ".";
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
        list += list.empty() ? "" : " ";
        list += marker == u"\n" ? std::string("\u21b5 (a line break)") : oneLine(marker);
    }
    return list;
}

// Nothing when the translation keeps the English text's markers, and real
// line breaks, in order; otherwise what differs.
std::optional<std::string> markerProblem(TextView english, TextView translation) {
    std::vector<Text> expected = markersToKeep(english, true);
    std::vector<Text> found = markersToKeep(translation, true);
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

// One translated entry of the PO file.
struct Translation {
    std::string where;  // its msgctxt, which names it in messages
    Field field;
    Text english;
    Text text;
};

// A schema file as loaded, with the translations accepted so far.
struct Loaded {
    std::string bytes;
    SchemaRead read;
    SchemaDocument document;
    int changes = 0;
};

// The file's bytes with the language's record written anew from the document.
std::string rewritten(const Loaded& file, const SchemaDocument& document, Language language,
                      const LocalDateTime& stamp) {
    std::array<bool, kLanguageCount> rewrite{};
    rewrite[indexOf(language)] = true;
    return rewriteRecords(file.bytes, file.read, document, rewrite, stamp);
}

// Nothing when the translation is accepted (and set in the document) or is
// in the file already; otherwise why it is refused.
std::optional<std::string> apply(Loaded& file, Language language, const Translation& entry,
                                 const LocalDateTime& stamp) {
    const bool title = entry.field == Field::Title;
    if (fieldOf(file.document, Language::English, entry.field) != entry.english) {
        return "the English text changed since export";
    }
    if (fieldOf(file.document, language, entry.field) == entry.text) {
        return std::nullopt;  // already in the file
    }
    const std::size_t limit = title ? kMaxTitleLength : kMaxBodyLength;
    if (entry.text.size() > limit) {
        return "longer than the window's limit of " + std::to_string(limit) + " characters";
    }
    if (title && entry.text.find_first_of(u"\r\n") != Text::npos) {
        return "a title is one line, and this translation holds a line break";
    }
    if (auto problem = markerProblem(entry.english, entry.text)) {
        return problem;
    }
    if (auto problem = unencodable(entry.text)) {
        return problem;
    }
    SchemaDocument trial = file.document;
    fieldOf(trial, language, entry.field) = entry.text;
    const std::string bytes = rewritten(file, trial, language, stamp);
    if (bytes.size() > maxSchemaFileSize()) {
        return "the file would be larger than the window opens";
    }
    const auto back = documentAfterLoad(readSchema(bytes));
    if (!back || back->entries != trial.entries || back->font != trial.font) {
        if (title && entry.text.find(u'>') != Text::npos) {
            return "a title cannot hold \">\": the file's title tag ends there";
        }
        return "the file's layout cannot carry this text: it would not load back the same";
    }
    file.document = std::move(trial);
    ++file.changes;
    return std::nullopt;
}

// How many messages, the header included, the PO file at `path` holds;
// nothing when it does not read without an error.
std::optional<std::size_t> messageCount(const std::string& path) {
    // What the library says about a text cut short is no news to the user.
    std::ostringstream ignored;
    const Reporting saved = gReporting;
    gReporting.out = &ignored;
    const PoFile po(readPoFile(path.c_str()));
    const bool read = po && gReporting.errors == saved.errors;
    gReporting = saved;
    if (!read) {
        return std::nullopt;
    }
    std::size_t count = 0;
    for (const char* const* domain = po_file_domains(po.get()); *domain != nullptr; ++domain) {
        const Iterator it(po_message_iterator(po.get(), *domain));
        while (po_next_message(it.get()) != nullptr) {
            ++count;
        }
    }
    return count;
}

std::string plural(int count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// How often a file that keeps changing under the import is read again.
constexpr int kReadAttempts = 3;

// Applies one schema file's translations and saves it once, never over a
// change that someone saved after it was read: then it is read again and the
// translations applied again. Reports each refusal and the file's outcome.
void importInto(const SchemaFile& file, std::vector<Translation> translations, Language language,
                bool dryRun, const LocalDateTime& stamp, std::ostream& out, ImportCounts& counts) {
    // Two entries that give one field two texts (through two names of the
    // file) are both refused: which one is meant is not for us to guess.
    std::vector<std::pair<std::string, std::string>> conflicts;
    for (const auto& fieldAndName : kFields) {
        const Field field = fieldAndName.first;
        const Text* first = nullptr;
        bool differ = false;
        for (const Translation& t : translations) {
            if (t.field == field) {
                differ = differ || (first != nullptr && t.text != *first);
                first = first != nullptr ? first : &t.text;
            }
        }
        if (!differ) {
            continue;
        }
        for (const Translation& t : translations) {
            if (t.field == field) {
                conflicts.emplace_back(t.where, "another entry gives this file's " +
                                                    std::string(fieldAndName.second) +
                                                    " another text");
            }
        }
        std::erase_if(translations, [field](const Translation& t) { return t.field == field; });
    }
    std::vector<std::pair<std::string, std::string>> refusals;
    int applied = 0;
    std::string failure;
    for (int attempt = 1; attempt <= kReadAttempts; ++attempt) {
        refusals = conflicts;
        failure.clear();
        Loaded loaded;
        const LoadResult load = loadSchemaFile(file.path.string(), {}, &loaded.bytes);
        const auto document = load.ok && std::ranges::all_of(load.read.records, fitsTheWindow)
                                  ? documentAfterLoad(load.read)
                                  : std::nullopt;
        if (!document) {
            const std::string why = !load.ok ? "the schema file does not load (" + load.reason + ")"
                                             : "the window cannot open the schema file "
                                               "(lorekeep-tool check says why)";
            for (const Translation& entry : translations) {
                refusals.emplace_back(entry.where, why);
            }
            break;
        }
        loaded.read = load.read;
        loaded.document = *document;
        for (const Translation& entry : translations) {
            if (auto refusal = apply(loaded, language, entry, stamp)) {
                refusals.emplace_back(entry.where, std::move(*refusal));
            }
        }
        if (loaded.changes == 0 || dryRun) {
            applied = loaded.changes;
            break;
        }
        struct stat st {};
        const bool linked = stat(file.path.c_str(), &st) == 0 && st.st_nlink > 1;
        const ReplaceResult saved = replaceFileContents(
            file.path.string(), rewritten(loaded, loaded.document, language, stamp), &loaded.bytes);
        if (saved) {
            applied = loaded.changes;
            if (linked) {
                out << file.name << ": note: its other hard links keep the old text (a save "
                    << "puts a new file in its place)\n";
            }
            break;
        }
        failure = saved.error;
        if (!saved.changedMeanwhile) {
            counts.refused += loaded.changes;
            break;
        }
        if (attempt == kReadAttempts) {
            failure =
                "it changed on disk each of the " + std::to_string(attempt) + " times it was read";
            counts.refused += loaded.changes;
        } else {
            out << file.name << ": changed on disk while importing; read again\n";
        }
    }
    for (const auto& [where, why] : refusals) {
        out << where << ": refused: " << why << "\n";
    }
    counts.refused += static_cast<int>(refusals.size());
    counts.applied += applied;
    if (applied > 0) {
        out << file.name << ": " << plural(applied, "translation")
            << (dryRun ? " would be applied (dry run)\n" : " applied\n");
    } else if (!failure.empty()) {
        out << file.name << ": refused: cannot be saved (" << failure
            << "); the file is as it was\n";
    }
}

// "fr, de or it": the languages a PO file may translate to.
std::string translatedCodes() {
    std::string list;
    for (std::size_t k = 1; k < kLanguages.size(); ++k) {
        list.append(k == 1                       ? ""
                    : k + 1 == kLanguages.size() ? " or "
                                                 : ", ")
            .append(kLanguages[k].code);
    }
    return list;
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

}  // namespace

bool exportPo(const std::vector<SchemaFile>& files, Language language, bool templateOnly,
              const std::string& output, std::ostream& out, std::ostream& errors) {
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
    std::size_t messages = 1;
    std::set<std::string> names;
    for (const SchemaFile& file : files) {
        if (!names.insert(file.name).second) {
            errors << "lorekeep-tool: " << file.path.string() << ": another of the paths holds a "
                   << "schema named " << file.name << ", which a PO entry could not tell apart; "
                   << "left out\n";
            continue;
        }
        const auto document = loadDocument(file.path);
        if (!document) {
            errors << "lorekeep-tool: " << file.path.string() << ": does not load; left out\n";
            continue;
        }
        const std::string name = escapeName(file.name);
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
            po_message_set_msgctxt(message, (name + "|" + std::string(fieldName)).c_str());
            po_message_set_msgid(message, toUtf8(english).c_str());
            po_message_set_msgstr(
                message, templateOnly || translation == english ? "" : toUtf8(translation).c_str());
            po_message_add_filepos(message, name.c_str(), static_cast<std::size_t>(-1));
            po_message_set_extracted_comments(message, keepComment(english).c_str());
            po_message_insert(at.get(), message);
            ++messages;
        }
    }
    // Written in memory first and read back whole: the library does not
    // report a failed write, and the file on disk is replaced only by all
    // of it.
    const MemoryFile memory;
    ReportTo reporting(errors, memory.name(), output);
    std::optional<std::string> bytes;
    if (memory.usable() && writePoFile(po.get(), memory.name().c_str()) &&
        reporting.errors() == 0 && messageCount(memory.name()) == messages) {
        bytes = memory.contents();
    }
    if (!bytes) {
        errors << "lorekeep-tool: " << output
               << ": cannot be written (the PO text was cut short while it was made); any "
                  "earlier file of that name is as it was\n";
        return false;
    }
    return writeOutput(output, *bytes, out, errors);
}

ImportCounts importPo(const std::string& poFile, const std::vector<SchemaFile>& files, bool dryRun,
                      std::ostream& out) {
    const ImportCounts refusedWhole{0, 1};
    PoFile po;
    {
        std::string bytes;
        std::string why;
        const MemoryFile memory;
        if (readFileBytes(poFile, kMaxPoFileSize, bytes, &why) &&
            (!memory.usable() || !memory.write(bytes))) {
            why = std::string("no copy of it can be made in memory: ") + std::strerror(errno);
        }
        if (!why.empty()) {
            out << "lorekeep-tool: " << poFile << ": cannot be read"
                << (why.empty() ? std::string() : " (" + why + ")") << "; nothing applied\n";
            return refusedWhole;
        }
        bytes = std::string();
        ReportTo reporting(out, memory.name(), poFile);
        po.reset(readPoFile(memory.name().c_str()));
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
            << (code.empty() ? "is missing" : "is " + code) << "; it must be " << translatedCodes()
            << "; nothing applied\n";
        return refusedWhole;
    }

    // Every name a file goes by leads to it, the name an export gives it
    // first: another file's other name (found through overlapping paths) does
    // not take that name away. A name that still leads to two files leads
    // nowhere.
    std::map<std::string, std::set<std::size_t>> byName;
    for (std::size_t k = 0; k < files.size(); ++k) {
        byName[files[k].name].insert(k);
    }
    std::map<std::string, std::set<std::size_t>> byOtherName;
    for (std::size_t k = 0; k < files.size(); ++k) {
        for (const std::string& name : files[k].otherNames) {
            if (!byName.contains(name)) {
                byOtherName[name].insert(k);
            }
        }
    }
    byName.merge(byOtherName);
    ImportCounts counts;
    std::map<std::size_t, std::vector<Translation>> perFile;
    for (const char* const* domain = po_file_domains(po.get()); *domain != nullptr; ++domain) {
        Iterator it(po_message_iterator(po.get(), *domain));
        while (po_message_t message = po_next_message(it.get())) {
            const char* context = po_message_msgctxt(message);
            const bool plural = po_message_msgid_plural(message) != nullptr;
            const std::string msgstr = po_message_msgstr(message);
            if ((context == nullptr && *po_message_msgid(message) == '\0') ||
                po_message_is_obsolete(message) || (msgstr.empty() && !plural)) {
                continue;  // the header, an old entry or no translation
            }
            const std::string where = context != nullptr ? context : "(an entry without msgctxt)";
            if (po_message_is_fuzzy(message)) {
                out << where << ": skipped: marked fuzzy\n";
                continue;
            }
            const std::size_t bar = where.rfind('|');
            const auto field = std::ranges::find(kFields, where.substr(bar + 1),
                                                 &std::pair<Field, std::string_view>::second);
            const auto target = bar == std::string::npos
                                    ? byName.end()
                                    : byName.find(unescapeName(where.substr(0, bar)));
            std::string refusal;
            if (context == nullptr || bar == std::string::npos || field == kFields.end()) {
                refusal = "not a schema's title or body (msgctxt \"<schema>|title\" or \"|body\")";
            } else if (plural) {
                refusal = "an entry with plural forms; a schema's field has one text";
            } else if (target == byName.end()) {
                refusal = "no such schema among the paths";
            } else if (target->second.size() > 1) {
                refusal = "several of the paths hold a schema with this name";
            } else {
                perFile[*target->second.begin()].push_back(
                    {where, field->first, fromUtf8(po_message_msgid(message)), fromUtf8(msgstr)});
                continue;
            }
            out << where << ": refused: " << refusal << "\n";
            ++counts.refused;
        }
    }

    const LocalDateTime stamp = SystemClock().now();
    for (auto& [index, translations] : perFile) {
        importInto(files[index], std::move(translations), *language, dryRun, stamp, out, counts);
    }
    out << "lorekeep-tool: " << plural(counts.applied, "translation")
        << (dryRun ? " would be applied, " : " applied, ") << counts.refused << " refused\n";
    return counts;
}

}  // namespace lorekeep::tool
