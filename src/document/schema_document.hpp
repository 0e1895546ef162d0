#pragma once

#include <array>

#include "document/language.hpp"
#include "markup/text.hpp"

namespace lorekeep {

// One language's share of a schema. The body is in the game's markup; its line
// separators are the two characters backslash and n, never real line breaks.
struct LanguageEntry {
    Text title;
    Text body;

    bool operator==(const LanguageEntry&) const = default;
};

// Everything one schema file holds. The window's controls are the real storage;
// this is the same data gathered in one place, for the writer and for tests.
struct SchemaDocument {
    std::array<LanguageEntry, kLanguageCount> entries;
    Text font;
    Text folder;
    Text name;

    LanguageEntry& entry(Language language) { return entries[IndexOf(language)]; }
    const LanguageEntry& entry(Language language) const { return entries[IndexOf(language)]; }

    bool operator==(const SchemaDocument&) const = default;
};

inline constexpr char16_t kPathSeparator = u'/';
inline constexpr std::u16string_view kSchemaExtension = u".sch";

// folder + separator + name + ".sch", by plain concatenation: nothing is
// trimmed, so a folder ending in a separator gives two in a row (the same
// directory) and a name typed with its extension carries it twice.
Text SchemaPath(TextView folder, TextView name);

}  // namespace lorekeep
