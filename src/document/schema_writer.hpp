#pragma once

#include <string>

#include "document/date_stamp.hpp"
#include "document/schema_document.hpp"

namespace lorekeep {

// The fixed header lines of every schema file.
inline constexpr std::u16string_view kVersionLine = u"VERSION 2.0";
inline constexpr std::u16string_view kEntryKindLine = u"TextEntry";
inline constexpr std::u16string_view kLineEnd = u"\r\n";

// One language record without its line end: key, stamp, opening quote, font
// tag, title tag (only for a non-empty title), body and closing piece.
// `tail` is everything from the date to the font tag's ">\n", shared by all
// four records of one save.
Text ComposeRecord(Language language, TextView tail, const LanguageEntry& entry);

// Date, " ", time, " ", opening quote, font tag.
Text ComposeRecordTail(const LocalDateTime& stamp, TextView font);

// The whole file as text: seven lines ending in CR LF (more when a field holds
// a real line break, which is written unchanged). Nothing is escaped.
Text ComposeSchemaText(const SchemaDocument& document, const LocalDateTime& stamp);

// The same, encoded in Windows-1252: the bytes that go to disk.
std::string ComposeSchemaBytes(const SchemaDocument& document, const LocalDateTime& stamp);

}  // namespace lorekeep
