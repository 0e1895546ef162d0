#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "markup/text.hpp"
#include "schema/language.hpp"
#include "spelling/words.hpp"

// Spelling over the desktop's Hunspell dictionaries, through Enchant: its
// personal word lists (Add to Dictionary) are the ones other desktop
// programs share, kept where Enchant keeps them.
namespace lorekeep::spelling {

// The dictionaries to try for a language, best first: those `overrides`
// names for it ("fr=fr_CA,en=en_GB", as LOREKEEP_DICTIONARIES holds it) and
// no other; else for English en_GB where `locale` is British, then the
// language's own.
std::vector<std::string> dictionaryCandidates(Language language, std::string_view locale,
                                              std::string_view overrides);

// The desktop's locale for messages (LC_ALL, LC_MESSAGES or LANG).
std::string desktopLocale();

// One dictionary per language, opened when made. Not for use from two
// threads at once.
class Dictionaries {
  public:
    // Opens the dictionaries of `languages`, chosen by dictionaryCandidates
    // from the environment.
    explicit Dictionaries(std::span<const Language> languages = kAllLanguages);
    ~Dictionaries();
    Dictionaries(const Dictionaries&) = delete;
    Dictionaries& operator=(const Dictionaries&) = delete;

    // The language has a dictionary; without one, no word of it is checked.
    bool has(Language language) const;
    // The dictionary's name ("fr_FR"); empty when there is none.
    const std::string& nameOf(Language language) const;
    // "no French spelling dictionary (fr_FR is not installed): French is not
    // checked"
    std::string missingLine(Language language) const;

    // The word is spelt right: in the dictionary, the personal word list or
    // this run's ignored words. True without a dictionary.
    bool isCorrect(Language language, TextView word);
    // At most `most` spellings the dictionary offers instead, best first.
    std::vector<Text> suggestions(Language language, TextView word, std::size_t most);
    // Into the personal word list of the language's dictionary, for good.
    void addToPersonal(Language language, TextView word);
    // Right for the rest of this run.
    void ignoreAll(Language language, TextView word);

    // The misspelt words among wordsIn(text, from, to). A word followed by a
    // full stop is also tried with it ("usw."), and a hyphenated one is
    // right when each of its parts is.
    std::vector<WordSpan> misspelt(Language language, TextView text, std::size_t from,
                                   std::size_t to);
    std::vector<WordSpan> misspelt(Language language, TextView text) {
        return misspelt(language, text, 0, text.size());
    }

  private:
    struct Private;
    std::unique_ptr<Private> d;
};

}  // namespace lorekeep::spelling
