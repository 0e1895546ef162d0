#include "editor/find_replace.hpp"

#include <algorithm>
#include <string>

#include "editor/texts.hpp"
#include "schema/limits.hpp"

namespace lorekeep::editor {

namespace {

Text counted(std::size_t number) {
    return fromUtf8(std::to_string(number));
}

Text matchOf(std::size_t ordinal, std::size_t total) {
    return counted(ordinal).append(texts::kMatchOf).append(counted(total));
}

Text replacedIn(std::size_t count, std::size_t languages) {
    return counted(count)
        .append(texts::kReplacedIn)
        .append(counted(languages))
        .append(languages == 1 ? texts::kOneLanguage : texts::kLanguagesCounted);
}

}  // namespace

std::vector<FindReplace::Field> FindReplace::fieldsOf(const FindRequest& request) const {
    std::vector<Field> fields;
    for (const Language language : kAllLanguages) {
        if (!request.allLanguages && language != m_controls.pages->shownLanguage()) {
            continue;
        }
        if (request.titlesToo) {
            fields.push_back({language, true});
        }
        fields.push_back({language, false});
    }
    return fields;
}

FindReplace::Place FindReplace::caretPlace(const std::vector<Field>& fields) const {
    const Language shown = m_controls.pages->shownLanguage();
    const bool inTitle = m_controls.pages->titleHasCaret();
    Place place;
    for (std::size_t k = 0; k < fields.size(); ++k) {
        if (fields[k].language != shown) {
            continue;
        }
        const LanguageControls& controls = m_controls.of(shown);
        if (fields[k].title && inTitle) {
            return {k, controls.title->selectionStart(), controls.title->selectionEnd()};
        }
        if (!fields[k].title) {
            // A caret in a title that is not searched stands before its body.
            return inTitle
                       ? Place{k, 0, 0}
                       : Place{k, controls.body->caretPosition(), controls.body->selectionEnd()};
        }
    }
    return place;
}

Text FindReplace::textOf(Field field) const {
    const LanguageControls& controls = m_controls.of(field.language);
    return field.title ? controls.title->text() : controls.body->plainText();
}

FindReplace::Found& FindReplace::foundIn(Field field) {
    return m_found[static_cast<std::size_t>(2 * indexOf(field.language) + (field.title ? 1 : 0))];
}

const std::vector<search::Match>& FindReplace::matchesIn(Field field, const FindRequest& request) {
    Found& found = foundIn(field);
    if (!found.valid || found.needle != request.needle || found.options != request.options) {
        found.matches = search::findAll(textOf(field), request.needle, request.options);
        found.needle = request.needle;
        found.options = request.options;
        found.valid = true;
    }
    return found.matches;
}

void FindReplace::textChanged(Language language, bool title) {
    foundIn({language, title}).valid = false;
}

void FindReplace::show(Field field, const search::Match& match) {
    m_controls.pages->showLanguage(field.language);
    LanguageControls& controls = m_controls.of(field.language);
    if (field.title) {
        controls.title->giveFocus();
        controls.title->select(match.start, match.length);
    } else {
        controls.body->giveFocus();
        controls.body->select(match.start, match.length);
    }
}

FindStatus FindReplace::find(const FindRequest& request, bool forwards) {
    if (request.needle.empty()) {
        return {};
    }
    const std::vector<Field> fields = fieldsOf(request);
    std::vector<std::size_t> before(fields.size() + 1, 0);  // matches in the fields before each
    for (std::size_t k = 0; k < fields.size(); ++k) {
        before[k + 1] = before[k] + matchesIn(fields[k], request).size();
    }
    if (before.back() == 0) {
        return {Text(texts::kNoMatches)};
    }
    const Place place = caretPlace(fields);
    const std::size_t count = fields.size();
    // Step 0 is the caret's own field beyond the caret; step `count` the
    // same field again, from its other end.
    for (std::size_t step = 0; step <= count; ++step) {
        const std::size_t k =
            forwards ? (place.field + step) % count : (place.field + count - step % count) % count;
        const bool wrapped = forwards ? place.field + step >= count : step > place.field;
        const std::vector<search::Match>& matches = matchesIn(fields[k], request);
        auto it = matches.end();
        if (forwards) {
            it = step == 0 ? std::ranges::lower_bound(matches, place.end, {}, &search::Match::start)
                           : matches.begin();
        } else {
            // The last match that ends at or before the caret.
            auto past = step == 0 ? std::ranges::upper_bound(
                                        matches, place.start, {},
                                        [](const search::Match& m) { return m.start + m.length; })
                                  : matches.end();
            it = past == matches.begin() ? matches.end() : std::prev(past);
        }
        if (it != matches.end()) {
            show(fields[k], *it);
            const auto ordinal = before[k] + static_cast<std::size_t>(it - matches.begin()) + 1;
            return {matchOf(ordinal, before.back()), wrapped};
        }
    }
    return {Text(texts::kNoMatches)};
}

FindStatus FindReplace::findNext(const FindRequest& request) {
    return find(request, true);
}

FindStatus FindReplace::findPrevious(const FindRequest& request) {
    return find(request, false);
}

FindStatus FindReplace::replace(const FindRequest& request) {
    if (request.needle.empty()) {
        return {};
    }
    const std::vector<Field> fields = fieldsOf(request);
    const Place place = caretPlace(fields);
    const Field field = fields[place.field];
    const search::Match selected{place.start, place.end - place.start};
    const Text text = textOf(field);
    // Only a match is replaced, as the text stands now.
    if (search::findNext(text, request.needle, request.options, selected.start) == selected) {
        LanguageControls& controls = m_controls.of(field.language);
        const Text old = text.substr(selected.start, selected.length);
        const bool replaced = field.title ? replaceStretch(*controls.title, selected.start, old,
                                                           request.replacement, kMaxTitleLength)
                                          : replaceStretch(*controls.body, selected.start, old,
                                                           request.replacement, kMaxBodyLength);
        if (!replaced) {
            return {};
        }
        textChanged(field.language, field.title);
    }
    return findNext(request);
}

FindStatus FindReplace::replaceAll(const FindRequest& request) {
    if (request.needle.empty()) {
        return {};
    }
    const std::vector<Field> fields = fieldsOf(request);
    // Every change is worked out, and checked against the limits, before any is made.
    struct Change {
        Field field;
        Text old;
        search::Replaced replaced;
        std::size_t count;
    };
    std::vector<Change> changes;
    for (const Field field : fields) {
        const std::vector<search::Match>& matches = matchesIn(field, request);
        if (matches.empty()) {
            continue;
        }
        LanguageControls& controls = m_controls.of(field.language);
        Text old = textOf(field);
        if (search::lengthAfterReplacing(old.size(), matches, request.replacement) >
            (field.title ? kMaxTitleLength : kMaxBodyLength)) {
            field.title ? controls.title->beep() : controls.body->beep();
            return {Text(texts::kReplaceTooLong)};
        }
        search::Replaced replaced = search::replaceMatches(
            old, matches, request.replacement,
            field.title ? controls.title->selectionStart() : controls.body->caretPosition());
        changes.push_back({field, std::move(old), std::move(replaced), matches.size()});
    }
    if (changes.empty()) {
        return {Text(texts::kNoMatches)};
    }
    std::size_t total = 0;
    std::array<bool, kLanguageCount> changed{};
    for (const Change& change : changes) {
        total += change.count;
        changed[static_cast<std::size_t>(indexOf(change.field.language))] = true;
        if (change.replaced.text == change.old) {
            continue;  // replaced by itself: no edit, no undo step
        }
        LanguageControls& controls = m_controls.of(change.field.language);
        const Splice splice = smallestChange(change.old, change.replaced.text);
        const auto apply = [&](auto& box) {
            box.replaceRange(splice.start, splice.length, splice.text);
            box.setCaretPosition(change.replaced.position);
        };
        change.field.title ? apply(*controls.title) : apply(*controls.body);
        textChanged(change.field.language, change.field.title);
    }
    return {replacedIn(total, static_cast<std::size_t>(std::ranges::count(changed, true)))};
}

}  // namespace lorekeep::editor
