#pragma once

#include <array>
#include <string_view>

namespace lorekeep {

// The four languages of a schema, in tab order. The index addresses every
// per-language control and fixes the order of the records in the file.
enum class Language : int { English = 0, French = 1, German = 2, Italian = 3 };

inline constexpr int kLanguageCount = 4;

struct LanguageInfo {
    Language language;
    std::u16string_view tabCaption;
    std::u16string_view recordKey;  // ends in the one space that belongs to the key
    std::u16string_view previewCaption;
};

inline constexpr std::array<LanguageInfo, kLanguageCount> kLanguages{{
    {Language::English, u"English", u"lang_english ", u"English Parsed"},
    {Language::French, u"French", u"lang_french ", u"French Parsed"},
    {Language::German, u"German", u"lang_german ", u"German Parsed"},
    {Language::Italian, u"Italian", u"lang_italian ", u"Italian Parsed"},
}};

inline constexpr std::array<Language, kLanguageCount> kAllLanguages{
    Language::English, Language::French, Language::German, Language::Italian};

constexpr int indexOf(Language language) {
    return static_cast<int>(language);
}

constexpr const LanguageInfo& infoOf(Language language) {
    return kLanguages[indexOf(language)];
}

}  // namespace lorekeep
