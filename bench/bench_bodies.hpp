#pragma once

#include <array>

#include "markup/markers.hpp"
#include "markup/text.hpp"

namespace lorekeep::bench {

// A long body of the kind a modder writes: words with a marker of some kind
// after each of them, about one marker per sixteen characters, every kind of marker taking its
// turn. Returns exactly `length` characters; `markers` receives how many whole markers it holds.
inline Text markedUpBody(std::size_t length, std::size_t* markers = nullptr) {
    const Text colour = markup::colourMarker(u"255", u"128", u"0");
    const Text font = Text(markup::kFontOpen) + u"Papyrus14" + Text(markup::kValueClose);
    const Text title = Text(markup::kTitleOpen) + u"Tower" + Text(markup::kValueClose);
    const std::array<Text, 10> kinds{Text(markup::kLineBreak),
                                     Text(markup::kParagraphBreak),
                                     Text(markup::kPageBreak),
                                     Text(markup::kLeftJustify),
                                     Text(markup::kCentre),
                                     Text(markup::kRightJustify),
                                     colour,
                                     Text(markup::kColourBlack),
                                     font,
                                     title};
    const std::array<std::u16string_view, 4> words{u"Lore ", u"of the ", u"tower ", u"keep "};
    Text body;
    std::size_t count = 0;
    for (std::size_t n = 0; body.size() < length; ++n) {
        body.append(words[n % words.size()]);
        body.append(kinds[n % kinds.size()]);
        ++count;
    }
    body.resize(length);
    if (markers != nullptr) {
        *markers = count;
    }
    return body;
}

// A body with a "tower" in every 40 characters (a line break marker among
// them), `length` rounded down to a whole number of 40: 100,000 of them in
// 4,000,000 characters.
inline Text towerBody(std::size_t length) {
    constexpr std::u16string_view kUnit = u"The tower stands\\n<br>\\nby the old keep.";
    Text body;
    body.reserve(length);
    while (body.size() + kUnit.size() <= length) {
        body.append(kUnit);
    }
    return body;
}

// Text without a single space or marker, as a pasted URL or a language
// without spaces would be: exactly `length` letters.
inline Text unbrokenBody(std::size_t length) {
    constexpr std::u16string_view kLetters = u"Loremipsumdolorsitametconsectetur";
    Text body;
    body.reserve(length);
    while (body.size() < length) {
        body.append(kLetters.substr(0, std::min(kLetters.size(), length - body.size())));
    }
    return body;
}

}  // namespace lorekeep::bench
