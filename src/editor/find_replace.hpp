#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "editor/controls.hpp"
#include "editor/schema_editor.hpp"
#include "search/find.hpp"

namespace lorekeep::editor {

// What the Find and Replace dialog asks for.
struct FindRequest {
    Text needle;
    Text replacement;
    search::FindOptions options;
    bool titlesToo = false;
    bool allLanguages = true;  // else the language shown only
};

// What the dialog says after a command: "3 of 12", "No matches", "12
// replaced in 3 languages"; and whether the search went round the end.
struct FindStatus {
    Text message;
    bool wrapped = false;
};

// Find and Replace over the window's titles and bodies. A search starts at
// the caret of the language shown and goes through the languages in tab
// order, each title (when asked for) before its body; past the last it starts
// again at the first. A match found is shown: its language's page comes up
// and the match is selected in its box.
class FindReplace {
  public:
    // `controls.pages` must be set.
    explicit FindReplace(const WindowControls& controls) : m_controls(controls) {}

    FindStatus findNext(const FindRequest& request);
    FindStatus findPrevious(const FindRequest& request);
    // Replaces the selected match, if a match is selected, then finds the next.
    FindStatus replace(const FindRequest& request);
    // Replaces every match in the scope: one undo step for each box changed.
    // When any text would grow beyond its limit, nothing changes.
    FindStatus replaceAll(const FindRequest& request);

    // A title or body changed: what was found in it is out of date.
    void textChanged(Language language, bool title);

  private:
    struct Field {
        Language language;
        bool title;
    };
    // Where the window's caret (or selection) stands, among the fields searched.
    struct Place {
        std::size_t field = 0;
        std::size_t start = 0;
        std::size_t end = 0;
    };
    // The matches of one field for one needle and set of options.
    struct Found {
        bool valid = false;
        Text needle;
        search::FindOptions options;
        std::vector<search::Match> matches;
    };

    std::vector<Field> fieldsOf(const FindRequest& request) const;
    Place caretPlace(const std::vector<Field>& fields) const;
    Text textOf(Field field) const;
    Found& foundIn(Field field);
    const std::vector<search::Match>& matchesIn(Field field, const FindRequest& request);
    // Steps from the caret through the fields, forwards or backwards.
    FindStatus find(const FindRequest& request, bool forwards);
    void show(Field field, const search::Match& match);

    WindowControls m_controls;
    std::array<Found, 2 * kLanguageCount> m_found{};
};

}  // namespace lorekeep::editor
