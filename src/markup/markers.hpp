#pragma once

#include <string>
#include <string_view>

// The game's markup vocabulary. This is the only place where a marker's
// characters, its length or a tag name is written down; every other file takes
// them from here.
namespace lorekeep::markup {

// The game's line separator: backslash and a lower-case n, never a real line break.
inline constexpr std::u16string_view kSeparator = u"\\n";

// Fixed markers.
inline constexpr std::u16string_view kLeftJustify = u"\\n<jl>\\n";
inline constexpr std::u16string_view kCentre = u"\\n<jc>\\n";
inline constexpr std::u16string_view kRightJustify = u"\\n<jr>\\n";
inline constexpr std::u16string_view kLineBreak = u"\\n<br>\\n";
inline constexpr std::u16string_view kParagraphBreak = u"\\n<p>\\n";
inline constexpr std::u16string_view kPageBreak = u"\\n<pb>\\n";
inline constexpr std::u16string_view kColourBlack = u"\\n<dc=0,0,0>\\n";

// Pieces of the markers that carry a value: open + value(s) + close.
inline constexpr std::u16string_view kColourOpen = u"\\n<dc=";
inline constexpr std::u16string_view kColourComponentSeparator = u",";
inline constexpr std::u16string_view kFontOpen = u"\\n<font=";
inline constexpr std::u16string_view kTitleOpen = u"\\n<title=";
inline constexpr std::u16string_view kValueClose = u">\\n";
inline constexpr char16_t kTagStart = u'<';
inline constexpr char16_t kTagEnd = u'>';

// Tag names as the preview renderer looks for them, three characters after a
// separator's backslash.
inline constexpr std::u16string_view kTagFont = u"font";
inline constexpr std::u16string_view kTagColour = u"dc=";
inline constexpr std::u16string_view kTagLeft = u"jl";
inline constexpr std::u16string_view kTagRight = u"jr";
inline constexpr std::u16string_view kTagCentre = u"jc";
inline constexpr std::u16string_view kTagLineBreak = u"br";
inline constexpr std::u16string_view kTagParagraph = u"p>";
inline constexpr std::u16string_view kTagPageBreak = u"pb";
inline constexpr std::size_t kTagOffset = 3;  // from the backslash to the tag name

// The title tag's word as the schema reader tests it (ignoring case).
inline constexpr std::u16string_view kTitleWord = u"title";

// What the preview shows for a page-break marker, between two line breaks.
inline constexpr std::u16string_view kPageBreakLine = u"-----------------Page Break------------";

// What the preview shows in place of a colour marker: "(R:" R ",G:" G ",B:" B ") ".
inline constexpr std::u16string_view kShownRed = u"(R:";
inline constexpr std::u16string_view kShownGreen = u",G:";
inline constexpr std::u16string_view kShownBlue = u",B:";
inline constexpr std::u16string_view kShownEnd = u") ";

inline std::u16string shownColour(std::u16string_view red, std::u16string_view green,
                                  std::u16string_view blue) {
    std::u16string shown(kShownRed);
    shown.append(red).append(kShownGreen).append(green).append(kShownBlue).append(blue);
    shown.append(kShownEnd);
    return shown;
}

// Colour marker composition: "\n<dc=" R "," G "," B ">\n".
inline std::u16string colourMarker(std::u16string_view red, std::u16string_view green,
                                   std::u16string_view blue) {
    std::u16string marker;
    marker.reserve(kColourOpen.size() + red.size() + green.size() + blue.size() + 2 +
                   kValueClose.size());
    marker.append(kColourOpen);
    marker.append(red);
    marker.append(kColourComponentSeparator);
    marker.append(green);
    marker.append(kColourComponentSeparator);
    marker.append(blue);
    marker.append(kValueClose);
    return marker;
}

}  // namespace lorekeep::markup
