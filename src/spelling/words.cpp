#include "spelling/words.hpp"

#include <glib.h>

#include <algorithm>
#include <tuple>

#include "markup/markers.hpp"
#include "markup/scanner.hpp"

namespace lorekeep::spelling {

namespace {

// The code point at `at` and how many units it takes; an unpaired
// surrogate is a code point of its own (no letter).
std::pair<char32_t, std::size_t> codePointAt(TextView text, std::size_t at) {
    const char16_t c = text[at];
    if (c >= 0xD800 && c < 0xDC00 && at + 1 < text.size() && text[at + 1] >= 0xDC00 &&
        text[at + 1] < 0xE000) {
        return {0x10000 + ((char32_t(c) - 0xD800) << 10) + (text[at + 1] - 0xDC00), 2};
    }
    return {c, 1};
}

enum class Kind { Other, Letter, Digit };

Kind kindOf(char32_t c) {
    if (c < 0x80) {  // the common case, without a table lookup
        if ((c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z')) {
            return Kind::Letter;
        }
        return c >= U'0' && c <= U'9' ? Kind::Digit : Kind::Other;
    }
    const auto u = static_cast<gunichar>(c);
    if (g_unichar_isalpha(u) || g_unichar_ismark(u)) {
        return Kind::Letter;
    }
    return g_unichar_isdigit(u) ? Kind::Digit : Kind::Other;
}

bool joinsLetters(char16_t c) {
    return c == u'\'' || c == u'\u2019' || c == u'-';
}

// The length of a "<...>" at `at`, or 0 when no ">" closes it in reach
// before another "<" or a separator.
std::size_t tagLength(TextView text, std::size_t at) {
    const std::size_t end = std::min(text.size(), at + kLongestTag);
    for (std::size_t k = at + 1; k < end; ++k) {
        if (text[k] == markup::kTagEnd) {
            return k + 1 - at;
        }
        if (text[k] == markup::kTagStart || text.substr(k).starts_with(markup::kSeparator)) {
            return 0;
        }
    }
    return 0;
}

}  // namespace

std::vector<WordSpan> wordsIn(TextView text, std::size_t from, std::size_t to) {
    std::vector<WordSpan> words;
    to = std::min(to, text.size());
    const std::size_t end = std::min(text.size(), to + kWordContext);
    const TextView seen = text.substr(0, end);
    std::size_t at = from > kWordContext ? from - kWordContext : 0;
    while (at < to) {
        if (const std::size_t marker = markup::writtenMarkerLength(seen, at); marker > 0) {
            // A marker as written. (What the preview hides after an odd colour
            // marker is checked: the hiding reaches from marker to marker, and
            // a reading that starts part way would see other words.)
            at += marker;
            continue;
        }
        if (seen[at] == markup::kTagStart) {
            at += std::max<std::size_t>(tagLength(seen, at), 1);
            continue;
        }
        auto [c, units] = codePointAt(seen, at);
        Kind kind = kindOf(c);
        if (kind == Kind::Other) {
            at += units;
            continue;
        }
        const std::size_t start = at;
        bool number = false;
        while (kind != Kind::Other) {
            number = number || kind == Kind::Digit;
            at += units;
            if (at >= seen.size()) {
                break;
            }
            std::tie(c, units) = codePointAt(seen, at);
            kind = kindOf(c);
            // One apostrophe or hyphen between two letters is inside the word.
            if (kind == Kind::Other && joinsLetters(seen[at]) && at + 1 < seen.size() &&
                kindOf(codePointAt(seen, at + 1).first) != Kind::Other) {
                at += 1;
                std::tie(c, units) = codePointAt(seen, at);
                kind = kindOf(c);
            }
        }
        if (!number && start >= from && at - start <= kLongestWord) {
            words.push_back({start, at - start});
        }
    }
    return words;
}

}  // namespace lorekeep::spelling
