#pragma once

#include <array>

#include "markup/text.hpp"
#include "schema/language.hpp"

namespace lorekeep {

// One language's share of a schema. The body is in the game's markup; its line
// separators are the two characters backslash and n, never real line breaks.
struct LanguageEntry {
    Text title;
    Text body;

    bool operator==(const LanguageEntry&) const = default;
};

// Everything one schema file holds, gathered from the window's controls at
// the moment of saving.
struct SchemaDocument {
    std::array<LanguageEntry, kLanguageCount> entries;
    Text font;
    Text folder;
    Text name;

    LanguageEntry& entry(Language language) { return entries[indexOf(language)]; }
    const LanguageEntry& entry(Language language) const { return entries[indexOf(language)]; }

    bool operator==(const SchemaDocument&) const = default;
};

// The game fonts that the font list offers, in its order. A loaded record
// names its font by one of these (in any letter case) or by any other text.
inline constexpr std::array<std::u16string_view, 5> kFontNames{
    u"Papyrus14", u"Papyrus20", u"SmallFont10", u"MediumFont14", u"MediumFont16"};

inline constexpr char16_t kPathSeparator = u'/';
inline constexpr std::u16string_view kSchemaExtension = u".sch";

// folder + separator + name + ".sch", by plain concatenation: nothing is
// trimmed, so a folder ending in a separator gives two in a row (the same
// directory) and a name typed with its extension carries it twice.
Text schemaPath(TextView folder, TextView name);

// Whether a file name ends in ".sch", in any letter case (TOWER.SCH too).
bool hasSchemaExtension(TextView fileName);

}  // namespace lorekeep
