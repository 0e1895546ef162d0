#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "markup/text.hpp"

// Finding and replacing text in titles and bodies, as the window's Find and
// Replace and lorekeep-tool find and replace do it.
namespace lorekeep::search {

struct FindOptions {
    bool matchCase = false;
    // The match stands between two characters that are no letters or digits
    // (a separator counts as such).
    bool wholeWords = false;
    // A match never starts or ends inside a marker as written, nor inside a
    // separator: "br" never finds the br of \n<br>\n.
    bool skipMarkers = true;

    bool operator==(const FindOptions&) const = default;
};

struct Match {
    std::size_t start = 0;
    std::size_t length = 0;

    bool operator==(const Match&) const = default;
};

// The first match that starts at or after `from`.
std::optional<Match> findNext(TextView text, TextView needle, const FindOptions& options,
                              std::size_t from = 0);
// The last match that ends at or before `before`.
std::optional<Match> findPrevious(TextView text, TextView needle, const FindOptions& options,
                                  std::size_t before);
// Every match, left to right, none overlapping another.
std::vector<Match> findAll(TextView text, TextView needle, const FindOptions& options);

// How long a text of `length` characters grows or shrinks to when each of
// `matches` (as findAll gives them) is replaced by `with`: known before the
// new text is built, which may be too long to build.
std::size_t lengthAfterReplacing(std::size_t length, const std::vector<Match>& matches,
                                 TextView with);

struct Replaced {
    Text text;
    // Where `position` of the old text stands in the new: it moves with the
    // text in front of it, and from inside a match to the match's start.
    std::size_t position = 0;
};
// `text` with each of `matches` (as findAll gives them) replaced by `with`.
Replaced replaceMatches(TextView text, const std::vector<Match>& matches, TextView with,
                        std::size_t position = 0);

}  // namespace lorekeep::search
