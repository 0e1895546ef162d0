#include "document/schema_reader.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "document/messages.hpp"
#include "document/schema_document.hpp"
#include "document/windows1252.hpp"
#include "markup/markers.hpp"

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

char16_t FoldCase(char16_t c) {
    if ((c >= u'A' && c <= u'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) {
        return static_cast<char16_t>(c + 0x20);
    }
    return c;
}

bool EqualIgnoringCase(TextView a, TextView b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t k = 0; k < a.size(); ++k) {
        if (FoldCase(a[k]) != FoldCase(b[k])) {
            return false;
        }
    }
    return true;
}

// 1-based "characters from a to b", empty when the range is empty or beyond the end.
TextView Characters(TextView text, std::size_t from, std::size_t to) {
    if (from < 1 || from > text.size() || to < from) {
        return {};
    }
    return text.substr(from - 1, to - from + 1);
}

// The characters after 1-based position p.
TextView After(TextView text, std::size_t p) {
    return p >= text.size() ? TextView() : text.substr(p);
}

bool SelectMatchingFont(TextView candidate, FontBox& font) {
    for (int k = 0; k < font.EntryCount(); ++k) {
        if (EqualIgnoringCase(candidate, font.EntryText(k))) {
            font.SelectEntry(k);
            return true;
        }
    }
    return false;
}

// A record as the writer lays it out: "\n<font=" name ">\n", optionally
// "\n<title=" title ">\n" (Italian: "\n<title=\n" title ">\n"), the body, and
// "\n" plus the closing quote (Italian: the quote alone).
std::optional<Text> ReadWriterLayout(TextView remainder, int i, FontBox& font, TextBox& title) {
    TextView rest = remainder.substr(markup::kFontOpen.size());
    const auto fontEnd = rest.find(markup::kTagEnd);
    const TextView fontName = rest.substr(0, fontEnd);
    if (!SelectMatchingFont(fontName, font)) {
        font.SetCurrentText(fontName);
    }
    rest = rest.substr(fontEnd + 1);
    if (rest.starts_with(markup::kSeparator)) {
        rest.remove_prefix(markup::kSeparator.size());
    }

    const bool italian = i == IndexOf(Language::Italian);
    if (rest.starts_with(markup::kTitleOpen)) {
        rest.remove_prefix(markup::kTitleOpen.size());
        if (italian && rest.starts_with(markup::kSeparator)) {
            rest.remove_prefix(markup::kSeparator.size());
        }
        const auto titleEnd = rest.find(markup::kTagEnd);
        title.SetText(rest.substr(0, titleEnd));
        rest = titleEnd == TextView::npos ? TextView() : rest.substr(titleEnd + 1);
        if (rest.starts_with(markup::kSeparator)) {
            rest.remove_prefix(markup::kSeparator.size());
        }
    } else {
        title.SetText(u"");
    }

    if (rest.empty()) {
        return std::nullopt;
    }
    rest.remove_suffix(1);
    if (!italian && rest.ends_with(markup::kSeparator)) {
        rest.remove_suffix(markup::kSeparator.size());
    }
    return Text(rest);
}

bool ReadFileBytes(const std::string& path, std::string& bytes) {
    std::error_code error;
    if (path.find('\0') != std::string::npos ||
        !std::filesystem::is_regular_file(std::filesystem::path(path), error)) {
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return false;
    }
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

}  // namespace

bool FieldReader::AtLineEnd() const {
    return next_ < text_.size() && (text_[next_] == u'\r' || text_[next_] == u'\n');
}

bool FieldReader::ConsumeLineEnd() {
    if (next_ < text_.size() && text_[next_] == u'\r') {
        ++next_;
        if (next_ < text_.size() && text_[next_] == u'\n') {
            ++next_;
        }
        return true;
    }
    if (next_ < text_.size() && text_[next_] == u'\n') {
        ++next_;
        return true;
    }
    return false;
}

std::optional<Text> FieldReader::ReadField() {
    if (AtEnd()) {
        return std::nullopt;
    }
    while (next_ < text_.size() && text_[next_] == u' ') {
        ++next_;
    }
    Text field;
    if (next_ < text_.size() && text_[next_] == kQuote) {
        ++next_;
        while (next_ < text_.size() && text_[next_] != kQuote && !AtLineEnd()) {
            field.push_back(text_[next_++]);
        }
        if (next_ < text_.size() && text_[next_] == kQuote) {
            ++next_;  // the closing quote; what follows it up to the separator still counts
        }
    }
    while (next_ < text_.size() && text_[next_] != kComma && !AtLineEnd()) {
        field.push_back(text_[next_++]);
    }
    if (!ConsumeLineEnd() && next_ < text_.size()) {
        ++next_;  // the comma
    }
    return field;
}

std::optional<std::array<Text, kLanguageCount>> CollectRecords(TextView fileText) {
    FieldReader reader(fileText);
    for (std::size_t k = 0; k < kHeaderFields; ++k) {
        if (!reader.ReadField()) {
            return std::nullopt;
        }
    }
    std::array<Text, kLanguageCount> records;
    int current = -1;
    while (!reader.AtEnd()) {
        std::optional<Text> field = reader.ReadField();
        if (!field) {
            return std::nullopt;
        }
        if (field->starts_with(kRecordStart)) {
            if (++current >= kLanguageCount) {
                return std::nullopt;
            }
            records[current] = std::move(*field);
        } else if (current < 0) {
            return std::nullopt;
        } else {
            records[current].append(*field);
        }
    }
    return records;
}

std::optional<Text> ReadLanguageBlock(TextView record, int i, FontBox& font, TextBox& title,
                                      const ReaderOptions& options) {
    // The key's trailing space, then the stamp and opening quote, unread.
    const TextView head = record.substr(0, std::min(record.size(), kKeySpaceSearch));
    const auto space = head.find(u' ');
    const std::size_t s = space == TextView::npos ? kKeySpaceSearch + 1 : space + 1;
    TextView remainder = After(record, s + kStampLength);

    if (options.acceptWriterLayout && remainder.starts_with(markup::kFontOpen) &&
        remainder.find(markup::kTagEnd) != TextView::npos) {
        return ReadWriterLayout(remainder, i, font, title);
    }

    // Font: "<font=" name ">" at the head of the remainder.
    const auto fontEnd = remainder.find(markup::kTagEnd);
    if (fontEnd != TextView::npos) {
        const std::size_t g = fontEnd + 1;
        if (g < kFontCandidateStart) {
            return std::nullopt;
        }
        if (SelectMatchingFont(Characters(remainder, kFontCandidateStart, g - 1), font)) {
            remainder = After(remainder, g);
        }
    }

    // Title: "<title=" title ">" next.
    if (EqualIgnoringCase(Characters(remainder, 2, 6), markup::kTitleWord)) {
        const auto titleEnd = remainder.find(markup::kTagEnd);
        const std::size_t h = titleEnd == TextView::npos ? remainder.size() + 1 : titleEnd + 1;
        title.SetText(h <= 8 ? TextView() : Characters(remainder, 8, h - 1));
        remainder = After(remainder, h);
    }

    if (remainder.empty()) {
        return std::nullopt;
    }
    return Text(remainder.substr(0, remainder.size() - 1));
}

namespace {

// Both passes; false on any failure, after which the window may hold the
// languages that were already taken apart.
bool ReadIntoWindow(std::string_view bytes, const LoadTargets& targets,
                    const ReaderOptions& options) {
    // Nothing in the window changes until the whole file has been read.
    const auto records = CollectRecords(DecodeWindows1252(bytes));
    if (!records) {
        return false;
    }
    for (const Text& record : *records) {
        if (options.maxRecordLength != 0 && record.size() > options.maxRecordLength) {
            return false;
        }
    }
    for (int i = 0; i < kLanguageCount; ++i) {
        const auto body =
            ReadLanguageBlock((*records)[i], i, *targets.font, *targets.titles[i], options);
        if (!body) {
            return false;
        }
        // Raises the editor's change notification: its preview follows
        // before the next language is taken apart.
        targets.editors[i]->SetPlainText(*body);
    }
    return true;
}

bool Fail(const LoadTargets& targets) {
    targets.messages->ShowMessage(texts::kLoadFailed, texts::kProgramTitle);
    return false;
}

}  // namespace

bool LoadFromBytes(std::string_view bytes, const LoadTargets& targets,
                   const ReaderOptions& options) {
    bool loaded = false;
    try {
        loaded = ReadIntoWindow(bytes, targets, options);
    } catch (...) {
        // Out of memory on a huge file, or a control that failed: the same
        // single message as any other failure.
        loaded = false;
    }
    return loaded || Fail(targets);
}

void Load(TextView SchemaName, TextView filename, const LoadTargets& targets,
          const ReaderOptions& options) {
    std::string bytes;
    bool read = false;
    try {
        read = ReadFileBytes(ToUtf8(SchemaPath(filename, SchemaName)), bytes);
    } catch (...) {
        read = false;
    }
    if (!read) {
        Fail(targets);
        return;
    }
    LoadFromBytes(bytes, targets, options);
}

}  // namespace lorekeep
