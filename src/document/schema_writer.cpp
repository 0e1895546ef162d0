#include "document/schema_writer.hpp"

#include "document/windows1252.hpp"
#include "markup/markers.hpp"

namespace lorekeep {

namespace {

constexpr char16_t kQuote = u'"';

}  // namespace

Text ComposeRecordTail(const LocalDateTime& stamp, TextView font) {
    Text tail = FormatDateStamp(stamp);
    tail.push_back(u' ');
    tail.append(FormatTimeStamp(stamp));
    tail.push_back(u' ');
    tail.push_back(kQuote);
    tail.append(markup::kFontOpen);
    tail.append(font);
    tail.append(markup::kValueClose);
    return tail;
}

Text ComposeRecord(Language language, TextView tail, const LanguageEntry& entry) {
    // The Italian record is the odd one out: a separator between the title
    // tag's "=" and the title, and no separator before the closing quote.
    const bool italian = language == Language::Italian;
    Text record;
    record.reserve(32 + tail.size() + entry.title.size() + entry.body.size());
    record.append(InfoOf(language).recordKey);
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

Text ComposeSchemaText(const SchemaDocument& document, const LocalDateTime& stamp) {
    const Text tail = ComposeRecordTail(stamp, document.font);
    Text file;
    for (TextView line : {kVersionLine, kEntryKindLine, TextView(document.name)}) {
        file.append(line);
        file.append(kLineEnd);
    }
    for (Language language : kAllLanguages) {
        file.append(ComposeRecord(language, tail, document.entry(language)));
        file.append(kLineEnd);
    }
    return file;
}

std::string ComposeSchemaBytes(const SchemaDocument& document, const LocalDateTime& stamp) {
    return EncodeWindows1252(ComposeSchemaText(document, stamp));
}

}  // namespace lorekeep
