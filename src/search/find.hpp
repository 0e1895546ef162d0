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

struct Replaced {
    Text text;
    std::size_t count = 0;
};
// `text` with every match of findAll replaced by `with`.
Replaced replaceAll(TextView text, TextView needle, TextView with, const FindOptions& options);

}  // namespace lorekeep::search
