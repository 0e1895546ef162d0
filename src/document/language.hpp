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
    int index;
    std::u16string_view tabCaption;
    std::u16string_view recordKey;  // ends in the one space that belongs to the key
    int previewIndex;
    std::u16string_view previewCaption;
};

inline constexpr std::array<LanguageInfo, kLanguageCount> kLanguages{{
    {Language::English, 0, u"English", u"lang_english ", 4, u"English Parsed"},
    {Language::French, 1, u"French", u"lang_french ", 5, u"French Parsed"},
    {Language::German, 2, u"German", u"lang_german ", 6, u"German Parsed"},
    {Language::Italian, 3, u"Italian", u"lang_italian ", 7, u"Italian Parsed"},
}};

inline constexpr std::array<Language, kLanguageCount> kAllLanguages{
    Language::English, Language::French, Language::German, Language::Italian};

constexpr int IndexOf(Language language) {
    return static_cast<int>(language);
}

constexpr const LanguageInfo& InfoOf(Language language) {
    return kLanguages[IndexOf(language)];
}

// Callers pass an index 0..3; anything else is a programming error.
constexpr Language LanguageAt(int index) {
    return kLanguages.at(index).language;
}

}  // namespace lorekeep
