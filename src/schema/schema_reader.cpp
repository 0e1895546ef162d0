#include "schema/schema_reader.hpp"

#include <algorithm>

#include "markup/markers.hpp"
#include "schema/schema_document.hpp"
#include "schema/windows1252.hpp"

namespace lorekeep {

namespace {

constexpr char16_t kQuote = u'"';
constexpr char16_t kComma = u',';
constexpr std::u16string_view kRecordStart = u"lang_";
constexpr std::size_t kHeaderFields = 3;
// Where the key's space is looked for, and how much of the stamp is skipped.
constexpr std::size_t kKeySpaceSearch = 20;
constexpr std::size_t kStampLength = 21;
constexpr std::size_t kFontCandidateStart = 7;  // 1-based, after "<font="

// The names compared ignoring case (the font list, "title") are ASCII.
char16_t foldCase(char16_t c) {
    if (c >= u'A' && c <= u'Z') {
        return static_cast<char16_t>(c + 0x20);
    }
    return c;
}

bool equalIgnoringCase(TextView a, TextView b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t k = 0; k < a.size(); ++k) {
        if (foldCase(a[k]) != foldCase(b[k])) {
            return false;
        }
    }
    return true;
}

// 1-based "characters from a to b", empty when the range is empty or beyond the end.
TextView characters(TextView text, std::size_t from, std::size_t to) {
    if (from < 1 || from > text.size() || to < from) {
        return {};
    }
    return text.substr(from - 1, to - from + 1);
}

// The characters after 1-based position p.
TextView after(TextView text, std::size_t p) {
    return p >= text.size() ? TextView() : text.substr(p);
}

// The first entry of the font list equal to `name`, ignoring case.
std::optional<FontChoice> listedFont(TextView name) {
    for (std::size_t k = 0; k < kFontNames.size(); ++k) {
        if (equalIgnoringCase(name, kFontNames[k])) {
            return FontChoice{static_cast<int>(k), Text(kFontNames[k])};
        }
    }
    return std::nullopt;
}

// A field is the rest of a line up to a comma or the line end, after any
// leading spaces; spaces at its end stay. A field that opens with a double
// quote runs to the next double quote on its line (to the line end when there
// is none), and whatever stands between that closing quote and the next comma
// or line end is added to it: only the two quote characters are lost.
class FieldReader {
  public:
    explicit FieldReader(TextView text) : m_text(text) {}

    // True when no character is left after the last field read.
    bool atEnd() const { return m_next >= m_text.size(); }

    // Where reading goes on; reading can be made to go on elsewhere.
    std::size_t position() const { return m_next; }
    void seek(std::size_t position) { m_next = std::min(position, m_text.size()); }

    // The next field; nothing when no character is left to read. `start`
    // receives where the field's first character stands in the text.
    std::optional<Text> readField(std::size_t* start = nullptr) {
        if (atEnd()) {
            return std::nullopt;
        }
        while (m_next < m_text.size() && m_text[m_next] == u' ') {
            ++m_next;
        }
        Text field;
        const bool quoted = m_next < m_text.size() && m_text[m_next] == kQuote;
        if (start != nullptr) {
            *start = m_next + (quoted ? 1 : 0);
        }
        if (quoted) {
            ++m_next;
            while (m_next < m_text.size() && m_text[m_next] != kQuote && !atLineEnd()) {
                field.push_back(m_text[m_next++]);
            }
            if (m_next < m_text.size() && m_text[m_next] == kQuote) {
                ++m_next;  // the closing quote; what follows it up to the separator still counts
            }
        }
        while (m_next < m_text.size() && m_text[m_next] != kComma && !atLineEnd()) {
            field.push_back(m_text[m_next++]);
        }
        if (!consumeLineEnd() && m_next < m_text.size()) {
            ++m_next;  // the comma
        }
        return field;
    }

  private:
    bool atLineEnd() const {
        return m_next < m_text.size() && (m_text[m_next] == u'\r' || m_text[m_next] == u'\n');
    }

    // Consumes a line end at the read position, if one stands there.
    bool consumeLineEnd() {
        if (m_next < m_text.size() && m_text[m_next] == u'\r') {
            ++m_next;
            if (m_next < m_text.size() && m_text[m_next] == u'\n') {
                ++m_next;
            }
            return true;
        }
        if (m_next < m_text.size() && m_text[m_next] == u'\n') {
            ++m_next;
            return true;
        }
        return false;
    }

    TextView m_text;
    std::size_t m_next = 0;
};

// Where the remainder of a record starting at `start` begins: after the
// key's space (looked for among the first 20 characters; without one, after
// the 20th) and the 21 characters of the stamp and the opening quote.
std::size_t remainderStart(TextView text, std::size_t start) {
    const TextView head = text.substr(start, kKeySpaceSearch);
    const auto space = head.find(u' ');
    return start + (space == TextView::npos ? kKeySpaceSearch : space) + 1 + kStampLength;
}

// Where the first line after `from` that begins with "lang_" starts, or the end.
std::size_t nextRecordLine(TextView text, std::size_t from) {
    for (std::size_t k = from; k < text.size(); ++k) {
        if ((text[k] == u'\r' || text[k] == u'\n') &&
            text.substr(k + 1).starts_with(kRecordStart)) {
            return k + 1;
        }
    }
    return text.size();
}

// Whether the record starting at `start` and running to `end` is in the
// writer's layout, complete: the opening quote, the font tag and a closing
// quote after it.
bool inWriterLayout(TextView text, std::size_t start, std::size_t end) {
    const std::size_t remainder = std::min(remainderStart(text, start), end);
    const TextView rest = text.substr(remainder, end - remainder);
    // Anything less is read by the field rules.
    const bool opened = remainder > start && text[remainder - 1] == kQuote;
    const std::size_t fontEnd = rest.find(markup::kTagEnd);
    return opened && rest.starts_with(markup::kFontOpen) && fontEnd != TextView::npos &&
           rest.find(kQuote, fontEnd) != TextView::npos;
}

// The header fields read and discarded, then the records gathered, by
// position. A field beginning with "lang_" (with case) starts the next record.
// A record in the writer's layout is taken whole from the raw text, from its
// key to its closing quote (the last one before the next line that begins
// with "lang_"): commas, the spaces after them, quotes and real line breaks
// all stay. In the older layout any other field is appended to the current
// record with nothing between. Nothing when the file cannot be taken apart.
std::optional<std::vector<Text>> collectRecords(TextView text, const ReaderOptions& options,
                                                SchemaRead& result) {
    FieldReader reader(text);
    for (std::size_t k = 0; k < kHeaderFields; ++k) {
        if (!reader.readField()) {
            result.problem = ReadProblem::TooFewFields;
            return std::nullopt;
        }
    }
    std::vector<Text> records;
    while (!reader.atEnd()) {
        std::size_t start = 0;
        std::optional<Text> field = reader.readField(&start);
        if (!field) {
            result.problem = ReadProblem::TooFewFields;
            return std::nullopt;
        }
        if (!field->starts_with(kRecordStart)) {
            if (records.empty()) {
                result.problem = ReadProblem::FieldBeforeFirstRecord;
                return std::nullopt;
            }
            records.back().append(*field);
            continue;
        }
        if (records.size() == kLanguageCount) {
            result.problem = ReadProblem::FifthRecord;
            return std::nullopt;
        }
        result.recordStarts.push_back(start);
        const std::size_t end = nextRecordLine(text, start);
        if (!options.acceptWriterLayout || !inWriterLayout(text, start, end)) {
            records.push_back(std::move(*field));
            continue;
        }
        // What follows the closing quote on its line belongs to no record.
        TextView raw = text.substr(start, end - start);
        raw = raw.substr(0, raw.rfind(kQuote) + 1);
        records.emplace_back(raw);
        reader.seek(end);
    }
    // A missing record reads as an empty one, which then fails on its own.
    if (records.size() < kLanguageCount) {
        result.problem = ReadProblem::MissingRecord;
    }
    records.resize(kLanguageCount);
    return records;
}

// A record as the writer lays it out: "\n<font=" name ">\n", optionally
// "\n<title=" title ">\n" (Italian: "\n<title=\n" title ">\n"), the body, and
// "\n" plus the closing quote (Italian: the quote alone). A record without a
// title tag empties the title box, as that is what was saved.
RecordRead readWriterLayout(TextView remainder, Language language) {
    RecordRead read;
    TextView rest = remainder.substr(markup::kFontOpen.size());
    const auto fontEnd = rest.find(markup::kTagEnd);
    const TextView fontName = rest.substr(0, fontEnd);
    // The name as saved: only an exact list name selects its entry.
    const auto listed = std::find(kFontNames.begin(), kFontNames.end(), fontName);
    read.font =
        FontChoice{listed == kFontNames.end() ? -1 : static_cast<int>(listed - kFontNames.begin()),
                   Text(fontName)};
    rest = rest.substr(fontEnd + 1);
    if (rest.starts_with(markup::kSeparator)) {
        rest.remove_prefix(markup::kSeparator.size());
    }

    const bool italian = language == Language::Italian;
    read.title = Text();
    if (rest.starts_with(markup::kTitleOpen)) {
        rest.remove_prefix(markup::kTitleOpen.size());
        if (italian && rest.starts_with(markup::kSeparator)) {
            rest.remove_prefix(markup::kSeparator.size());
        }
        const auto titleEnd = rest.find(markup::kTagEnd);
        read.title = Text(rest.substr(0, titleEnd));
        rest = titleEnd == TextView::npos ? TextView() : rest.substr(titleEnd + 1);
        if (rest.starts_with(markup::kSeparator)) {
            rest.remove_prefix(markup::kSeparator.size());
        }
    }

    if (rest.empty()) {
        return read;
    }
    rest.remove_suffix(1);
    if (!italian && rest.ends_with(markup::kSeparator)) {
        rest.remove_suffix(markup::kSeparator.size());
    }
    read.body = Text(rest);
    return read;
}

// Takes one record apart: its font and title where they stand at its head,
// then its body, less its closing character.
RecordRead readLanguageBlock(TextView record, Language language, const ReaderOptions& options,
                             SchemaRead& result) {
    // The key's trailing space, then the stamp and opening quote, unread.
    TextView remainder = after(record, remainderStart(record, 0));
    if (options.acceptWriterLayout && inWriterLayout(record, 0, record.size())) {
        result.writerLayout[indexOf(language)] = true;
        return readWriterLayout(remainder, language);
    }

    RecordRead read;
    // Font: "<font=" name ">" at the head of the remainder.
    const auto fontEnd = remainder.find(markup::kTagEnd);
    if (fontEnd != TextView::npos) {
        const std::size_t g = fontEnd + 1;
        if (g < kFontCandidateStart) {
            result.problem = ReadProblem::FontTagTooEarly;
            return read;
        }
        read.font = listedFont(characters(remainder, kFontCandidateStart, g - 1));
        if (read.font) {
            remainder = after(remainder, g);
        }
    }

    // Title: "<title=" title ">" next.
    if (equalIgnoringCase(characters(remainder, 2, 6), markup::kTitleWord)) {
        const auto titleEnd = remainder.find(markup::kTagEnd);
        const std::size_t h = titleEnd == TextView::npos ? remainder.size() + 1 : titleEnd + 1;
        read.title = Text(h <= 8 ? TextView() : characters(remainder, 8, h - 1));
        remainder = after(remainder, h);
    }

    if (!remainder.empty()) {
        read.body = Text(remainder.substr(0, remainder.size() - 1));
    }
    return read;
}

}  // namespace

SchemaRead readSchema(std::string_view bytes, const ReaderOptions& options) {
    SchemaRead result;
    const auto records = collectRecords(decodeWindows1252(bytes), options, result);
    if (!records) {
        return result;
    }
    for (Language language : kAllLanguages) {
        result.records.push_back(
            readLanguageBlock((*records)[indexOf(language)], language, options, result));
        if (!result.records.back().body) {
            if (result.problem != ReadProblem::FontTagTooEarly) {
                // A missing record is the first empty one; otherwise nothing was left.
                result.problem = result.problem == ReadProblem::MissingRecord &&
                                         (*records)[indexOf(language)].empty()
                                     ? ReadProblem::MissingRecord
                                     : ReadProblem::EmptyRemainder;
            }
            break;
        }
    }
    if (result.complete()) {
        result.problem = ReadProblem::None;
    }
    return result;
}

}  // namespace lorekeep
