#include "search/find.hpp"

#include <locale.h>
#include <wctype.h>

#include <algorithm>
#include <array>
#include <memory>

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

// The lower case of every character of the first plane, worked out once.
const std::array<char16_t, 0x10000>& lowerCase() {
    static const auto table = [] {
        auto lower = std::make_unique<std::array<char16_t, 0x10000>>();
        for (std::size_t c = 0; c < lower->size(); ++c) {
            const auto character = static_cast<char16_t>(c);
            auto mapped = static_cast<wint_t>(c);
            if (c < 0x80) {
                mapped = c >= u'A' && c <= u'Z' ? mapped + (u'a' - u'A') : mapped;
            } else if (!isSurrogate(character) && unicodeLocale() != locale_t{}) {
                mapped = towlower_l(mapped, unicodeLocale());
            }
            (*lower)[c] = mapped < 0x10000 ? static_cast<char16_t>(mapped) : character;
        }
        return lower;
    }();
    return *table;
}

char16_t folded(char16_t c) {
    return lowerCase()[c];
}

// The characters that fold to `first` (itself among them), for the quick
// scan: up to four, the list filled up by repeating them; none listed when
// there are more.
struct Candidates {
    std::array<char16_t, 4> list;
    std::size_t count = 0;
};
std::optional<Candidates> candidatesFor(char16_t first) {
    // A search asks for the same letter again and again (once per match).
    thread_local char16_t cachedFirst = 0;
    thread_local std::optional<Candidates> cached;
    if (cachedFirst == first && cached) {
        return cached;
    }
    Candidates candidates;
    candidates.list.fill(first);
    const auto& lower = lowerCase();
    for (std::size_t c = 0; c < lower.size(); ++c) {
        if (lower[c] == first) {
            if (candidates.count == candidates.list.size()) {
                return std::nullopt;
            }
            candidates.list[candidates.count++] = static_cast<char16_t>(c);
        }
    }
    if (candidates.count <= 2) {
        candidates.list[2] = candidates.list[0];
        candidates.list[3] = candidates.list[1];
    }
    cachedFirst = first;
    cached = candidates;
    return cached;
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

// From `at` on, the start of the first block of 32 characters up to `end`
// that holds one of the first `N` candidates; `end` when none does. No early
// exit within a block, so that the compiler vectorises it.
template <std::size_t N>
std::size_t blockWithCandidate(const char16_t* characters, std::size_t at, std::size_t end,
                               const std::array<char16_t, 4>& list) {
    constexpr std::size_t kBlock = 32;
    const unsigned a = list[0], b = list[1], c = N > 2 ? list[2] : a, d = N > 2 ? list[3] : b;
    for (; at + kBlock <= end; at += kBlock) {
        unsigned any = 0;
        for (std::size_t k = 0; k < kBlock; ++k) {
            const unsigned x = characters[at + k];
            any |= static_cast<unsigned>(x == a) | static_cast<unsigned>(x == b);
            if constexpr (N > 2) {
                any |= static_cast<unsigned>(x == c) | static_cast<unsigned>(x == d);
            }
        }
        if (any != 0) {
            return at;
        }
    }
    return at;
}

// The first place from `at` up to `last` whose character folds to `first`.
// A run without one is passed over a block at a time.
std::size_t nextCandidate(TextView text, std::size_t at, std::size_t last, char16_t first) {
    constexpr std::size_t kBlock = 32;
    const std::optional<Candidates> candidates = candidatesFor(first);
    const char16_t* characters = text.data();
    while (at <= last) {
        if (candidates) {
            at = candidates->count <= 2
                     ? blockWithCandidate<2>(characters, at, last + 1, candidates->list)
                     : blockWithCandidate<4>(characters, at, last + 1, candidates->list);
        }
        // The block that may hold one, a character at a time; then blocks again.
        for (const std::size_t end = std::min(last + 1, at + kBlock); at < end; ++at) {
            const char16_t x = characters[at];
            if (candidates ? std::ranges::find(candidates->list, x) != candidates->list.end()
                           : folded(x) == first) {
                return at;
            }
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
    const std::size_t last = text.size() - needle.size();
    for (std::size_t at = from; at <= last; ++at) {
        if (options.matchCase) {
            at = text.find(needle, at);
            if (at == TextView::npos) {
                return std::nullopt;
            }
        } else {
            at = nextCandidate(text, at, last, first);
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

std::size_t lengthAfterReplacing(std::size_t length, const std::vector<Match>& matches,
                                 TextView with) {
    std::size_t removed = 0;
    for (const Match& match : matches) {
        removed += match.length;
    }
    return length - removed + matches.size() * with.size();
}

Replaced replaceMatches(TextView text, const std::vector<Match>& matches, TextView with,
                        std::size_t position) {
    Replaced replaced;
    replaced.text.reserve(lengthAfterReplacing(text.size(), matches, with));
    replaced.position = position;
    std::size_t copied = 0;
    for (const Match& match : matches) {
        replaced.text.append(text.substr(copied, match.start - copied));
        if (match.start < position) {
            replaced.position = replaced.text.size();  // inside the match: at its start
        }
        replaced.text.append(with);
        copied = match.start + match.length;
        if (copied <= position) {
            replaced.position = replaced.text.size() + (position - copied);
        }
    }
    replaced.text.append(text.substr(copied));
    return replaced;
}

}  // namespace lorekeep::search
