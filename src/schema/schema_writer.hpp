#pragma once

#include <string>

#include "schema/date_stamp.hpp"
#include "schema/schema_document.hpp"
#include "schema/schema_reader.hpp"

namespace lorekeep {

// The fixed header lines of every schema file.
inline constexpr std::u16string_view kVersionLine = u"VERSION 2.0";
inline constexpr std::u16string_view kEntryKindLine = u"TextEntry";
inline constexpr std::u16string_view kLineEnd = u"\r\n";

// The whole file as text: the header, then one record per language, each line
// ending in CR LF (more lines when a field holds a real line break, which is
// written unchanged). A record is its key, the date and time, a double quote,
// the font tag, the title tag (only for a non-empty title), the body and the
// closing piece. Nothing is escaped.
Text composeSchemaText(const SchemaDocument& document, const LocalDateTime& stamp);

// The same, encoded in Windows-1252: the bytes that go to disk.
std::string composeSchemaBytes(const SchemaDocument& document, const LocalDateTime& stamp);

// One record line without its line end: the language's key, the stamp, the
// font tag, the title tag (only for a non-empty title) and the body.
Text composeRecordText(Language language, const LocalDateTime& stamp, TextView font,
                       const LanguageEntry& entry);

// A schema file's `bytes`, which readSchema took apart into `read` (all four
// records found), with the records of the languages marked in `rewrite`
// written anew from `document` and `stamp`, each with the font it named
// (the document's where it named none). Everything else keeps its bytes:
// the header lines, and the other records with their stamps.
std::string rewriteRecords(std::string_view bytes, const SchemaRead& read,
                           const SchemaDocument& document,
                           const std::array<bool, kLanguageCount>& rewrite,
                           const LocalDateTime& stamp);

// The longest a field may be.
struct FieldLimits {
    std::size_t name = 0;
    std::size_t font = 0;
    std::size_t title = 0;
    std::size_t body = 0;
};

// The size of the largest file that composeSchemaBytes writes for fields
// within these limits.
std::size_t largestSchemaSize(const FieldLimits& limits);

}  // namespace lorekeep
