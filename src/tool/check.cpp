#include "tool/check.hpp"

#include <algorithm>
#include <cstdio>

#include "markup/markers.hpp"
#include "markup/scanner.hpp"
#include "schema/limits.hpp"
#include "schema/windows1252.hpp"
#include "tool/schema_set.hpp"

namespace lorekeep::tool {

namespace {

// The bytes that Windows-1252 leaves without a character.
constexpr std::string_view kUndefinedBytes = "\x81\x8D\x8F\x90\x9D";
// How much of a tag a message quotes.
constexpr std::size_t kQuotedTag = 24;
// Suggestions that a spelling warning names.
constexpr std::size_t kSuggestions = 3;

// A piece of text fit for a one-line message: control characters as "?",
// long pieces cut with "...".
std::string excerpt(TextView text) {
    Text shown(text.substr(0, kQuotedTag));
    std::ranges::replace_if(
        shown, [](char16_t c) { return c < u' '; }, u'?');
    std::string result(1, '"');
    result += toUtf8(shown);
    result += text.size() > kQuotedTag ? "...\"" : "\"";
    return result;
}

std::string loadProblem(ReadProblem problem, const std::string& record) {
    switch (problem) {
        case ReadProblem::TooFewFields:
            return "does not load: the file ends before its three header lines";
        case ReadProblem::FieldBeforeFirstRecord:
            return "does not load: a field stands before the first record (a comma in the "
                   "schema name splits its line)";
        case ReadProblem::FifthRecord:
            return "does not load: it holds a fifth record (a line of a text starts with "
                   "\"lang_\")";
        case ReadProblem::MissingRecord:
            return "does not load: the " + record + " record is missing";
        case ReadProblem::EmptyRemainder:
            return "does not load: the " + record +
                   " record has nothing left after its stamp, font and title";
        case ReadProblem::FontTagTooEarly:
            return "does not load: the " + record +
                   " record's first \">\" stands among the six characters after its stamp";
        case ReadProblem::None:
            break;
    }
    return "does not load";
}

class Checker {
  public:
    Checker(std::string file, std::vector<Finding>& findings)
        : m_file(std::move(file)), m_findings(findings) {}

    void add(int language, std::string field, std::size_t position, Severity severity,
             std::string message) {
        m_findings.push_back({m_file, language < 0 ? "" : languageCode(Language(language)),
                              std::move(field), position, severity, std::move(message)});
    }

    // Markers that the preview shows as typed or that eat text, read as the
    // preview reads them.
    void checkMarkers(int language, TextView body) {
        for (std::size_t i = body.find(markup::kSeparator); i != TextView::npos;
             i = body.find(markup::kSeparator, i)) {
            const markup::Marker marker = markup::markerAt(body, i);
            if (marker.kind == markup::MarkerKind::Colour) {
                checkColour(language, i, marker);
            } else if (marker.kind == markup::MarkerKind::None ||
                       marker.kind == markup::MarkerKind::Font) {
                shownAsTyped(language, body, i, marker.kind == markup::MarkerKind::Font);
            }
            i += std::max(marker.span, markup::kSeparator.size());
        }
    }

  private:
    void shownAsTyped(int language, TextView body, std::size_t at, bool font) {
        if (!body.substr(at + markup::kSeparator.size()).starts_with(markup::kTagStart)) {
            return;  // a bare separator
        }
        const std::size_t length = markup::writtenTagLength(body, at);
        if (length == 0) {
            add(language, "body", at, Severity::Warning,
                "\"\\n<\" is not closed by \">\" before the next \\n; the preview shows it as "
                "typed");
            return;
        }
        const std::size_t open = at + markup::kSeparator.size();
        const TextView tag = body.substr(open, body.find(markup::kTagEnd, open) + 1 - open);
        add(language, "body", at, Severity::Warning,
            (font ? "the font tag " : "unknown tag ") + excerpt(tag) +
                " is shown as typed in the preview");
    }

    void checkColour(int language, std::size_t at, const markup::Marker& marker) {
        const markup::ColourComponents& parts = marker.components;
        for (std::size_t c = 0; c < parts.text.size(); ++c) {
            if (!markup::colourComponentValue(parts.text[c])) {
                add(language, "body", at + parts.start[c], Severity::Warning,
                    "colour component " + excerpt(parts.text[c]) +
                        " is not a whole number from 0 to 255");
            }
        }
        if (!marker.closed) {
            add(language, "body", at, Severity::Error,
                "the colour marker has no closing \\n within reach: the preview swallows the " +
                    std::to_string(marker.span) + " characters from its backslash");
            return;
        }
        // Where the ">" after the blue component stands, or would.
        const std::size_t close = at + parts.start[2] + parts.text[2].size();
        if (at + marker.span - markup::kSeparator.size() > close + 1) {
            add(language, "body", close, Severity::Warning,
                "text between the colour marker's \">\" and its closing \\n is not shown");
        }
    }

    std::string m_file;
    std::vector<Finding>& m_findings;
};

// Where two texts first differ.
std::size_t firstDifference(TextView a, TextView b) {
    const auto [left, right] = std::ranges::mismatch(a, b);
    return static_cast<std::size_t>(left - a.begin());
}

}  // namespace

std::string SpellingReport::message(Language language, TextView word) {
    auto [known, added] = m_messages.try_emplace({language, Text(word)});
    if (added) {
        std::string offered;
        // Suggestions cost the dictionary tens of milliseconds a word: a mod
        // full of names of its own would otherwise take hours.
        const std::vector<Text> suggestions =
            m_suggested < m_suggestedWords
                ? m_dictionaries.suggestions(language, word, kSuggestions)
                : std::vector<Text>();
        ++m_suggested;
        for (const Text& suggestion : suggestions) {
            offered += (offered.empty() ? " (" : ", ") + toUtf8(suggestion);
        }
        known->second = excerpt(word) + " is not in the " + toUtf8(infoOf(language).tabCaption) +
                        " dictionary" + (offered.empty() ? "" : offered + ")");
    }
    return known->second;
}

namespace {

void checkSpelling(Checker& checker, SpellingReport& spelling, int language, const char* field,
                   TextView text) {
    for (const spelling::WordSpan& word :
         spelling.dictionaries().misspelt(Language(language), text)) {
        checker.add(language, field, word.start, Severity::Warning,
                    spelling.message(Language(language), text.substr(word.start, word.length)));
    }
}

}  // namespace

std::vector<Finding> checkSchema(std::string_view bytes, const std::string& file,
                                 SpellingReport* spelling) {
    std::vector<Finding> findings;
    Checker checker(file, findings);

    if (const auto undefined = bytes.find_first_of(kUndefinedBytes);
        undefined != std::string_view::npos) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "0x%02X", static_cast<unsigned char>(bytes[undefined]));
        checker.add(-1, "file", undefined, Severity::Warning,
                    std::string("byte ") + hex + " is not a character in Windows-1252");
    }

    const SchemaRead read = readSchema(bytes);
    const auto document = documentAfterLoad(read);
    if (!document) {
        const int record = read.records.empty() ? -1 : static_cast<int>(read.records.size()) - 1;
        const std::string name = record < 0 ? "" : toUtf8(infoOf(Language(record)).tabCaption);
        checker.add(record, record < 0 ? "file" : "record", 0, Severity::Error,
                    loadProblem(read.problem, name));
        return findings;
    }

    // What a save from the window writes must load back as it is now.
    const auto saved = documentAfterSave(*document);
    if (saved && saved->font != document->font) {
        checker.add(
            -1, "font", firstDifference(document->font, saved->font), Severity::Error,
            "the font name " + excerpt(document->font) + " does not load back after a save");
    }

    // The window refuses a file with a field longer than its box holds, in
    // any record.
    auto checkLength = [&](int language, const char* field, const Text* text, std::size_t limit) {
        if (text != nullptr && text->size() > limit) {
            checker.add(language, field, limit, Severity::Error,
                        "longer than the window's limit of " + std::to_string(limit) +
                            " characters (" + std::to_string(text->size()) +
                            "): the window does not load this file");
        }
    };
    for (int i = 0; i < kLanguageCount; ++i) {
        const RecordRead& record = read.records[i];
        checkLength(i, "font", record.font ? &record.font->text : nullptr, kMaxLineLength);
        checkLength(i, "title", record.title ? &*record.title : nullptr, kMaxTitleLength);
        checkLength(i, "body", &*record.body, kMaxBodyLength);
    }

    const LanguageEntry& english = document->entries[0];
    for (int i = 0; i < kLanguageCount; ++i) {
        const LanguageEntry& entry = document->entries[i];
        if (!read.writerLayout[i]) {
            checker.add(i, "record", 0, Severity::Warning,
                        "in the older layout (tags without \\n around them); a save writes "
                        "the current one");
        }
        const std::pair<const char*, TextView> fields[] = {{"title", entry.title},
                                                           {"body", entry.body}};
        const LanguageEntry* after = saved ? &saved->entries[i] : nullptr;
        for (const auto& [field, text] : fields) {
            const bool title = field == std::string_view("title");
            const TextView again = after ? (title ? TextView(after->title) : after->body) : text;
            if (again != text) {
                checker.add(i, field, firstDifference(text, again), Severity::Error,
                            std::string("a save cannot carry this ") + field +
                                ": it would load back differently");
            }
            if (text.empty()) {
                checker.add(i, field, 0, Severity::Warning, std::string("empty ") + field);
            } else if (i > 0 && text == (title ? TextView(english.title) : english.body)) {
                checker.add(i, field, 0, Severity::Warning,
                            std::string("the same as the English ") + field + ": not translated?");
            }
            if (title && spelling != nullptr) {
                checkSpelling(checker, *spelling, i, field, text);
            }
        }
        // The body's findings in the order of their places.
        const std::size_t bodyFrom = findings.size();
        checker.checkMarkers(i, entry.body);
        if (spelling != nullptr) {
            checkSpelling(checker, *spelling, i, "body", entry.body);
            std::stable_sort(
                findings.begin() + static_cast<std::ptrdiff_t>(bodyFrom), findings.end(),
                [](const Finding& a, const Finding& b) { return a.position < b.position; });
        }
    }
    return findings;
}

std::string formatFinding(const Finding& finding) {
    std::string line = finding.file + ": ";
    if (!finding.language.empty()) {
        line += finding.language + " ";
    }
    line += finding.field + " " + std::to_string(finding.position) + ": ";
    line += finding.severity == Severity::Error ? "error: " : "warning: ";
    return line + finding.message;
}

namespace {

// A JSON string that is valid UTF-8 whatever `text` holds: a byte that is
// not part of valid UTF-8 (a file name's, say) is written as the escape
// \udc80 to \udcff, the form in which Python's "surrogateescape" reads it
// back to the same byte.
std::string jsonString(std::string_view text) {
    std::string json = "\"";
    auto escape = [&json](unsigned code) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", code);
        json += escaped;
    };
    const Text decoded = fromUtf8(text);
    for (std::size_t k = 0; k < decoded.size(); ++k) {
        const char16_t c = decoded[k];
        const bool pair = c >= 0xD800 && c < 0xDC00 && k + 1 < decoded.size() &&
                          decoded[k + 1] >= 0xDC00 && decoded[k + 1] < 0xE000;
        if (c == u'"' || c == u'\\') {
            json += '\\';
            json += static_cast<char>(c);
        } else if (c < 0x20 || (c >= 0xD800 && c < 0xE000 && !pair)) {
            escape(c);
        } else {
            json += toUtf8(TextView(decoded).substr(k, pair ? 2 : 1));
            k += pair ? 1 : 0;
        }
    }
    return json + "\"";
}

}  // namespace

std::string formatFindingsJson(const std::vector<Finding>& findings) {
    std::string json = "[";
    for (std::size_t k = 0; k < findings.size(); ++k) {
        const Finding& f = findings[k];
        json += k == 0 ? "" : ",";
        json += "{\"file\":" + jsonString(f.file) + ",\"language\":" + jsonString(f.language) +
                ",\"field\":" + jsonString(f.field) +
                ",\"position\":" + std::to_string(f.position) +
                ",\"severity\":" + jsonString(f.severity == Severity::Error ? "error" : "warning") +
                ",\"message\":" + jsonString(f.message) + "}";
    }
    return json + "]";
}

}  // namespace lorekeep::tool
