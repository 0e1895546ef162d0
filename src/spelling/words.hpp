#pragma once

#include <cstddef>
#include <vector>

#include "markup/text.hpp"

// Which stretches of a title or body are words to check for spelling. The
// markup is read as written, through the markup scanner: markers, the
// separators "\n" and anything inside "<...>" (of up to kLongestTag
// characters) are never words, and a word after a separator starts after it
// ("\nHello" holds "Hello"). Every construct is short, so a stretch read with
// kWordContext around it gives the words of the whole text there.
namespace lorekeep::spelling {

struct WordSpan {
    std::size_t start = 0;
    std::size_t length = 0;

    bool operator==(const WordSpan&) const = default;
};

// A run of letters longer than this is no word a dictionary holds.
inline constexpr std::size_t kLongestWord = 64;
// A "<...>" longer than this (to its ">") is text, not a tag.
inline constexpr std::size_t kLongestTag = 64;
// How much text around a stretch decides which words start in it: the
// longest construct that can reach into it from either side, and then some.
inline constexpr std::size_t kWordContext = 2 * kLongestWord;

// The words that start in [from, to) of `text`: runs of letters, joined
// across a single apostrophe or hyphen between two letters. A run with a
// digit in it is a number, not a word. Reads only from `from` less
// kWordContext to `to` plus kWordContext, so that a caller may pass just
// that much of a longer text.
std::vector<WordSpan> wordsIn(TextView text, std::size_t from, std::size_t to);

inline std::vector<WordSpan> wordsIn(TextView text) {
    return wordsIn(text, 0, text.size());
}

}  // namespace lorekeep::spelling
