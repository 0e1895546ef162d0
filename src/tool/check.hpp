#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "spelling/dictionaries.hpp"

// lorekeep-tool check: what would go wrong with a schema file in the window or
// the game, found without a window.
namespace lorekeep::tool {

enum class Severity { Warning, Error };

// Spelling for check --spelling: the dictionaries, and the messages already
// made. The first kSuggestedWords different misspelt words of a run name
// the dictionary's suggestions (it takes tens of milliseconds for each);
// the rest are reported without.
inline constexpr std::size_t kSuggestedWords = 50;

class SpellingReport {
  public:
    explicit SpellingReport(spelling::Dictionaries& dictionaries,
                            std::size_t suggestedWords = kSuggestedWords)
        : m_dictionaries(dictionaries), m_suggestedWords(suggestedWords) {}
    spelling::Dictionaries& dictionaries() { return m_dictionaries; }
    // "\"mondde\" is not in the French dictionary (monde, monade, mondée)"
    std::string message(Language language, TextView word);

  private:
    spelling::Dictionaries& m_dictionaries;
    std::map<std::pair<Language, Text>, std::string> m_messages;
    std::size_t m_suggestedWords;
    std::size_t m_suggested = 0;
};

struct Finding {
    std::string file;
    std::string language;      // "en", "fr", "de", "it"; empty for the file as a whole
    std::string field;         // "title", "body", "font", "record" or "file"
    std::size_t position = 0;  // characters from the start of the field (of the file for "file")
    Severity severity = Severity::Warning;
    std::string message;  // one line

    bool operator==(const Finding&) const = default;
};

// Every finding in one schema file's bytes, in file order; with
// `dictionaries`, each misspelt word of a title or body too.
std::vector<Finding> checkSchema(std::string_view bytes, const std::string& file,
                                 SpellingReport* spelling = nullptr);

// "file: fr body 12: warning: message"
std::string formatFinding(const Finding& finding);
// A JSON array of objects with the same six members.
std::string formatFindingsJson(const std::vector<Finding>& findings);

}  // namespace lorekeep::tool
