#include "spelling/dictionaries.hpp"

#include <enchant.h>

#include <cstdlib>
#include <functional>
#include <unordered_map>

namespace lorekeep::spelling {

namespace {

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(TextView text) const { return std::hash<TextView>{}(text); }
};

// Known answers, so that a word is asked of the dictionary once. Bounded:
// a run over a whole mod forgets them all now and then.
using Answers = std::unordered_map<Text, bool, TextHash, std::equal_to<>>;
constexpr std::size_t kMostAnswers = 1 << 20;

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

std::vector<std::string> dictionaryCandidates(Language language, std::string_view locale,
                                              std::string_view overrides) {
    const LanguageInfo& info = infoOf(language);
    std::vector<std::string> candidates;
    // "fr=fr_CA,en=en_GB": the entries for this language's code, in order.
    while (!overrides.empty()) {
        const std::size_t comma = overrides.find(',');
        const std::string_view entry = overrides.substr(0, comma);
        overrides = comma == std::string_view::npos ? "" : overrides.substr(comma + 1);
        const std::size_t equals = entry.find('=');
        if (equals != std::string_view::npos && entry.substr(0, equals) == info.code &&
            equals + 1 < entry.size()) {
            candidates.emplace_back(entry.substr(equals + 1));
        }
    }
    if (!candidates.empty()) {
        return candidates;  // as asked, and nothing else
    }
    if (language == Language::English && locale.starts_with("en_GB")) {
        candidates.emplace_back("en_GB");
    }
    candidates.emplace_back(info.dictionary);
    return candidates;
}

std::string desktopLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (std::string value = environment(name); !value.empty()) {
            return value;
        }
    }
    return "";
}

struct Dictionaries::Private {
    EnchantBroker* broker = nullptr;
    std::array<EnchantDict*, kLanguageCount> dictionaries{};
    std::array<std::string, kLanguageCount> names;
    std::array<Answers, kLanguageCount> answers;

    EnchantDict* of(Language language) const { return dictionaries[indexOf(language)]; }
};

Dictionaries::Dictionaries(std::span<const Language> languages) : d(std::make_unique<Private>()) {
    d->broker = enchant_broker_init();
    if (d->broker == nullptr) {
        return;
    }
    const std::string locale = desktopLocale();
    const std::string overrides = environment("LOREKEEP_DICTIONARIES");
    for (const Language language : languages) {
        for (const std::string& name : dictionaryCandidates(language, locale, overrides)) {
            if (enchant_broker_dict_exists(d->broker, name.c_str()) == 0) {
                continue;
            }
            if (EnchantDict* dictionary = enchant_broker_request_dict(d->broker, name.c_str())) {
                d->dictionaries[indexOf(language)] = dictionary;
                d->names[indexOf(language)] = name;
                break;
            }
        }
    }
}

Dictionaries::~Dictionaries() {
    if (d->broker == nullptr) {
        return;
    }
    for (EnchantDict* dictionary : d->dictionaries) {
        if (dictionary != nullptr) {
            enchant_broker_free_dict(d->broker, dictionary);
        }
    }
    enchant_broker_free(d->broker);
}

bool Dictionaries::has(Language language) const {
    return d->of(language) != nullptr;
}

const std::string& Dictionaries::nameOf(Language language) const {
    return d->names[indexOf(language)];
}

std::string Dictionaries::missingLine(Language language) const {
    const std::vector<std::string> tried =
        dictionaryCandidates(language, desktopLocale(), environment("LOREKEEP_DICTIONARIES"));
    std::string names;
    for (const std::string& name : tried) {
        names += (names.empty() ? "" : " or ") + name;
    }
    const std::string caption = toUtf8(infoOf(language).tabCaption);
    return "no " + caption + " spelling dictionary (" + names + " is not installed): " + caption +
           " is not checked";
}

bool Dictionaries::isCorrect(Language language, TextView word) {
    EnchantDict* dictionary = d->of(language);
    if (dictionary == nullptr || word.empty()) {
        return true;
    }
    Answers& answers = d->answers[indexOf(language)];
    if (const auto known = answers.find(word); known != answers.end()) {
        return known->second;
    }
    const std::string utf8 = toUtf8(word);
    const bool correct =
        enchant_dict_check(dictionary, utf8.data(), static_cast<ssize_t>(utf8.size())) == 0;
    if (answers.size() >= kMostAnswers) {
        answers.clear();
    }
    answers.emplace(word, correct);
    return correct;
}

std::vector<Text> Dictionaries::suggestions(Language language, TextView word, std::size_t most) {
    std::vector<Text> offered;
    EnchantDict* dictionary = d->of(language);
    if (dictionary == nullptr || word.empty()) {
        return offered;
    }
    const std::string utf8 = toUtf8(word);
    std::size_t count = 0;
    char** list =
        enchant_dict_suggest(dictionary, utf8.data(), static_cast<ssize_t>(utf8.size()), &count);
    for (std::size_t k = 0; k < count && offered.size() < most; ++k) {
        offered.push_back(fromUtf8(list[k]));
    }
    if (list != nullptr) {
        enchant_dict_free_string_list(dictionary, list);
    }
    return offered;
}

void Dictionaries::addToPersonal(Language language, TextView word) {
    if (EnchantDict* dictionary = d->of(language); dictionary != nullptr && !word.empty()) {
        const std::string utf8 = toUtf8(word);
        enchant_dict_add(dictionary, utf8.data(), static_cast<ssize_t>(utf8.size()));
        // The dictionary may now take other forms too ("ZORBAXE" after "Zorbaxe").
        d->answers[indexOf(language)].clear();
    }
}

void Dictionaries::ignoreAll(Language language, TextView word) {
    if (EnchantDict* dictionary = d->of(language); dictionary != nullptr && !word.empty()) {
        const std::string utf8 = toUtf8(word);
        enchant_dict_add_to_session(dictionary, utf8.data(), static_cast<ssize_t>(utf8.size()));
        d->answers[indexOf(language)].clear();
    }
}

std::vector<WordSpan> Dictionaries::misspelt(Language language, TextView text, std::size_t from,
                                             std::size_t to) {
    std::vector<WordSpan> wrong;
    if (!has(language)) {
        return wrong;
    }
    for (const WordSpan& span : wordsIn(text, from, to)) {
        const TextView word = text.substr(span.start, span.length);
        if (isCorrect(language, word)) {
            continue;
        }
        const std::size_t end = span.start + span.length;
        if (end < text.size() && text[end] == u'.' &&
            isCorrect(language, text.substr(span.start, span.length + 1))) {
            continue;
        }
        bool partsRight = word.find(u'-') != TextView::npos;
        for (std::size_t at = 0; partsRight && at <= word.size();) {
            const std::size_t hyphen = std::min(word.find(u'-', at), word.size());
            partsRight = isCorrect(language, word.substr(at, hyphen - at));
            at = hyphen + 1;
        }
        if (!partsRight) {
            wrong.push_back(span);
        }
    }
    return wrong;
}

}  // namespace lorekeep::spelling
