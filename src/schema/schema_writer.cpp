#include "schema/schema_writer.hpp"

#include "markup/markers.hpp"
#include "schema/windows1252.hpp"

namespace lorekeep {

namespace {

constexpr char16_t kQuote = u'"';

// Date, " ", time, " ", opening quote, font tag: the same in all four records.
Text composeRecordTail(const LocalDateTime& stamp, TextView font) {
    Text tail = formatDateStamp(stamp);
    tail.push_back(u' ');
    tail.append(formatTimeStamp(stamp));
    tail.push_back(u' ');
    tail.push_back(kQuote);
    tail.append(markup::kFontOpen);
    tail.append(font);
    tail.append(markup::kValueClose);
    return tail;
}

Text composeRecord(Language language, TextView tail, const LanguageEntry& entry) {
    // The Italian record is the odd one out: a separator between the title
    // tag's "=" and the title, and no separator before the closing quote.
    const bool italian = language == Language::Italian;
    Text record;
    record.reserve(32 + tail.size() + entry.title.size() + entry.body.size());
    record.append(infoOf(language).recordKey);
    record.append(tail);
    if (!entry.title.empty()) {
        record.append(markup::kTitleOpen);
        if (italian) {
            record.append(markup::kSeparator);
        }
        record.append(entry.title);
        record.append(markup::kValueClose);
    }
    record.append(entry.body);
    if (!italian) {
        record.append(markup::kSeparator);
    }
    record.push_back(kQuote);
    return record;
}

}  // namespace

Text composeSchemaText(const SchemaDocument& document, const LocalDateTime& stamp) {
    const Text tail = composeRecordTail(stamp, document.font);
    Text file;
    for (TextView line : {kVersionLine, kEntryKindLine, TextView(document.name)}) {
        file.append(line);
        file.append(kLineEnd);
    }
    for (Language language : kAllLanguages) {
        file.append(composeRecord(language, tail, document.entry(language)));
        file.append(kLineEnd);
    }
    return file;
}

Text composeRecordText(Language language, const LocalDateTime& stamp, TextView font,
                       const LanguageEntry& entry) {
    return composeRecord(language, composeRecordTail(stamp, font), entry);
}

std::string rewriteRecords(std::string_view bytes, const SchemaRead& read,
                           const SchemaDocument& document,
                           const std::array<bool, kLanguageCount>& rewrite,
                           const LocalDateTime& stamp) {
    const std::vector<std::size_t>& starts = read.recordStarts;
    std::string file;
    file.reserve(bytes.size());
    std::size_t copied = 0;
    for (std::size_t i = 0; i < starts.size() && i < rewrite.size(); ++i) {
        if (!rewrite[i]) {
            continue;
        }
        // A record runs up to the next one's key, line ends and all. It keeps
        // the font it named; the document's is the last record's that names one.
        const bool named = i < read.records.size() && read.records[i].font;
        const TextView font = named ? TextView(read.records[i].font->text) : document.font;
        file.append(bytes.substr(copied, starts[i] - copied));
        file += encodeWindows1252(
            composeRecordText(kAllLanguages[i], stamp, font, document.entries[i]));
        file += encodeWindows1252(kLineEnd);
        copied = i + 1 < starts.size() ? starts[i + 1] : bytes.size();
    }
    file.append(bytes.substr(copied));
    return file;
}

std::string composeSchemaBytes(const SchemaDocument& document, const LocalDateTime& stamp) {
    return encodeWindows1252(composeSchemaText(document, stamp));
}

std::size_t largestSchemaSize(const FieldLimits& limits) {
    // Every character is one byte: the frame of a file whose fields are all
    // empty but for one-character titles, plus the fields at their limits.
    SchemaDocument frame;
    for (LanguageEntry& entry : frame.entries) {
        entry.title = u"x";
    }
    const std::size_t frameSize =
        composeSchemaText(frame, LocalDateTime{2000, 1, 1, 0, 0, 0}).size() - kLanguageCount;
    return frameSize + limits.name + kLanguageCount * (limits.font + limits.title + limits.body);
}

}  // namespace lorekeep
