#include "search/find.hpp"

#include <locale.h>
#include <wctype.h>

#include <algorithm>

#include "markup/markers.hpp"
#include "markup/scanner.hpp"

namespace lorekeep::search {

namespace {

// Unicode's simple case mapping and letter classes, as the C library knows
// them in its UTF-8 locale (whatever the process's own locale is).
locale_t unicodeLocale() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{});
    return locale;
}

bool isSurrogate(char16_t c) {
    return c >= 0xD800 && c < 0xE000;
}

char16_t folded(char16_t c) {
    if (c < 0x80) {
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
    }
    if (isSurrogate(c) || unicodeLocale() == locale_t{}) {
        return c;
    }
    const wint_t lower = towlower_l(c, unicodeLocale());
    return lower < 0x10000 ? static_cast<char16_t>(lower) : c;
}

bool isWordCharacter(char16_t c) {
    if (c < 0x80) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
               c == u'_';
    }
    // Half of a character beyond the first plane: a letter, as likely as not.
    if (isSurrogate(c) || unicodeLocale() == locale_t{}) {
        return true;
    }
    return iswalnum_l(c, unicodeLocale()) != 0;
}

bool sameAt(TextView text, std::size_t at, TextView needle, bool matchCase) {
    if (at + needle.size() > text.size()) {
        return false;
    }
    for (std::size_t k = 0; k < needle.size(); ++k) {
        const char16_t c = text[at + k];
        if (c != needle[k] && (matchCase || folded(c) != needle[k])) {
            return false;
        }
    }
    return true;
}

// `at` lies strictly inside a marker as written, or a separator.
bool insideMarker(TextView text, std::size_t at) {
    const std::size_t first =
        at > markup::kLongestWrittenMarker ? at - markup::kLongestWrittenMarker : 0;
    for (std::size_t start = first; start < at; ++start) {
        if (text[start] == markup::kSeparator[0] &&
            start + markup::writtenMarkerLength(text, start) > at) {
            return true;
        }
    }
    return false;
}

// No letter or digit on either side of the stretch; a separator counts as
// a space.
bool standsAlone(TextView text, const Match& match) {
    const std::size_t end = match.start + match.length;
    const bool before = match.start == 0 || !isWordCharacter(text[match.start - 1]) ||
                        (match.start >= markup::kSeparator.size() &&
                         text.substr(match.start - markup::kSeparator.size(),
                                     markup::kSeparator.size()) == markup::kSeparator);
    return before && (end >= text.size() || !isWordCharacter(text[end]));
}

bool accepted(TextView text, const Match& match, const FindOptions& options) {
    if (options.wholeWords && !standsAlone(text, match)) {
        return false;
    }
    return !options.skipMarkers ||
           (!insideMarker(text, match.start) && !insideMarker(text, match.start + match.length));
}

// The first place from `at` up to `last` whose character may fold to
// `first` (lower case) or `capital`: either of them, or any beyond ASCII.
// Most text is ASCII, and a run of it is passed over a block at a time.
std::size_t nextCandidate(TextView text, std::size_t at, std::size_t last, char16_t first,
                          char16_t capital) {
    constexpr std::size_t kBlock = 32;
    const char16_t* characters = text.data();
    for (; at + kBlock <= last + 1; at += kBlock) {
        unsigned any = 0;
        for (std::size_t k = 0; k < kBlock; ++k) {  // no early exit: the compiler vectorises it
            const unsigned c = characters[at + k];
            any |= static_cast<unsigned>(c == first) | static_cast<unsigned>(c == capital) |
                   (c & 0xFF80U);
        }
        if (any != 0) {
            break;
        }
    }
    for (; at <= last; ++at) {
        const char16_t c = characters[at];
        if (c == first || c == capital || (c >= 0x80 && folded(c) == first)) {
            return at;
        }
    }
    return TextView::npos;
}

Text foldedText(TextView text) {
    Text result(text);
    std::ranges::transform(result, result.begin(), folded);
    return result;
}

}  // namespace

std::optional<Match> findNext(TextView text, TextView needle, const FindOptions& options,
                              std::size_t from) {
    if (needle.empty() || needle.size() > text.size()) {
        return std::nullopt;
    }
    const Text lower = options.matchCase ? Text() : foldedText(needle);
    const TextView wanted = options.matchCase ? needle : TextView(lower);
    const char16_t first = wanted[0];
    // The first letter's capital, for a quick scan of ASCII text; any other
    // character is folded as it comes.
    const char16_t capital =
        first >= u'a' && first <= u'z' ? static_cast<char16_t>(first - (u'a' - u'A')) : first;
    const std::size_t last = text.size() - needle.size();
    for (std::size_t at = from; at <= last; ++at) {
        if (options.matchCase) {
            at = text.find(needle, at);
            if (at == TextView::npos) {
                return std::nullopt;
            }
        } else {
            at = nextCandidate(text, at, last, first, capital);
            if (at == TextView::npos) {
                return std::nullopt;
            }
            if (!sameAt(text, at, wanted, false)) {
                continue;
            }
        }
        const Match match{at, needle.size()};
        if (accepted(text, match, options)) {
            return match;
        }
    }
    return std::nullopt;
}

std::optional<Match> findPrevious(TextView text, TextView needle, const FindOptions& options,
                                  std::size_t before) {
    before = std::min(before, text.size());
    if (needle.empty() || needle.size() > before) {
        return std::nullopt;
    }
    const Text lower = options.matchCase ? Text() : foldedText(needle);
    const TextView wanted = options.matchCase ? needle : TextView(lower);
    for (std::size_t at = before - needle.size() + 1; at-- > 0;) {
        if (sameAt(text, at, wanted, options.matchCase)) {
            const Match match{at, needle.size()};
            if (accepted(text, match, options)) {
                return match;
            }
        }
    }
    return std::nullopt;
}

std::vector<Match> findAll(TextView text, TextView needle, const FindOptions& options) {
    std::vector<Match> matches;
    for (auto match = findNext(text, needle, options, 0); match;
         match = findNext(text, needle, options, match->start + match->length)) {
        matches.push_back(*match);
    }
    return matches;
}

Replaced replaceAll(TextView text, TextView needle, TextView with, const FindOptions& options) {
    Replaced replaced;
    std::size_t copied = 0;
    for (const Match& match : findAll(text, needle, options)) {
        replaced.text.append(text.substr(copied, match.start - copied)).append(with);
        copied = match.start + match.length;
        ++replaced.count;
    }
    replaced.text.append(text.substr(copied));
    return replaced;
}

}  // namespace lorekeep::search
