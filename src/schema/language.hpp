#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace lorekeep {

// The four languages of a schema, in tab order. The order fixes the order of
// the records in the file and of the pages in the window.
enum class Language : int { English = 0, French = 1, German = 2, Italian = 3 };

// The one table of the languages: everything else that lists them (the
// window's pages, the file's records, the command lines, PO files) is built
// from it.
struct LanguageInfo {
    Language language;
    std::string_view code;  // ISO 639-1: command lines, PO headers, HTML pages
    std::u16string_view tabCaption;
    std::u16string_view recordKey;  // ends in the one space that belongs to the key
    std::u16string_view previewCaption;
    // Where the language's OK button stands among the four in the window's
    // keyboard focus order (the original's order: Italian, German, English,
    // French).
    int okButtonFocusPlace;
    // The Hunspell dictionary that spelling checks against (English takes
    // en_GB where the desktop's locale asks for it).
    std::string_view dictionary;
};

inline constexpr std::array kLanguages{
    LanguageInfo{Language::English, "en", u"English", u"lang_english ", u"English Parsed", 2,
                 "en_US"},
    LanguageInfo{Language::French, "fr", u"French", u"lang_french ", u"French Parsed", 3, "fr_FR"},
    LanguageInfo{Language::German, "de", u"German", u"lang_german ", u"German Parsed", 1, "de_DE"},
    LanguageInfo{Language::Italian, "it", u"Italian", u"lang_italian ", u"Italian Parsed", 0,
                 "it_IT"},
};

inline constexpr int kLanguageCount = static_cast<int>(kLanguages.size());

inline constexpr auto kAllLanguages = [] {
    std::array<Language, kLanguages.size()> all{};
    for (std::size_t k = 0; k < kLanguages.size(); ++k) {
        all[k] = kLanguages[k].language;
    }
    return all;
}();

constexpr int indexOf(Language language) {
    return static_cast<int>(language);
}

constexpr const LanguageInfo& infoOf(Language language) {
    return kLanguages[static_cast<std::size_t>(indexOf(language))];
}

// "fr", or a PO file's "fr_FR" or "fr-CA": the language whose code it
// starts with.
constexpr std::optional<Language> languageFromCode(std::string_view code) {
    for (const LanguageInfo& info : kLanguages) {
        const std::string_view known = info.code;
        if (code.substr(0, known.size()) == known &&
            (code.size() == known.size() || code[known.size()] == '_' ||
             code[known.size()] == '-' || code[known.size()] == '.')) {
            return info.language;
        }
    }
    return std::nullopt;
}

// "en", "English" or "english": the language with that code or tab
// caption, as lorekeep-tool's findings name it.
constexpr std::optional<Language> languageFromName(std::string_view name) {
    const auto lower = [](char32_t c) { return c >= U'A' && c <= U'Z' ? c + (U'a' - U'A') : c; };
    for (const LanguageInfo& info : kLanguages) {
        const auto sameAs = [&name, &lower](auto known) {
            bool same = name.size() == known.size();
            for (std::size_t k = 0; same && k < name.size(); ++k) {
                same = lower(static_cast<unsigned char>(name[k])) == lower(known[k]);
            }
            return same;
        };
        if (sameAs(info.tabCaption) || sameAs(info.code)) {
            return info.language;
        }
    }
    return std::nullopt;
}

}  // namespace lorekeep
