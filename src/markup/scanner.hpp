#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "markup/markers.hpp"
#include "markup/preview.hpp"

// The one reading of the markup: which marker starts at a place in a body and
// how far it reaches, as the preview renders it. The renderer, the checks of
// lorekeep-tool, the translators' list of markers and the colour command all
// ask here.
namespace lorekeep::markup {

// What the preview makes of the text at a separator.
enum class MarkerKind {
    None,  // a bare separator, or a tag the preview shows as typed (the title, unknown ones)
    Font,  // the font tag: recognised, and shown as typed
    Colour,
    LeftJustify,
    RightJustify,
    Centre,
    LineBreak,
    ParagraphBreak,
    PageBreak,
};

// The red, green and blue components of a colour marker as written.
struct ColourComponents {
    std::array<std::size_t, 3> start{};  // counted from the marker's backslash
    std::array<Text, 3> text;
    std::optional<Rgb> colour;  // when all three are colour numbers (colourComponentValue)
};

struct Marker {
    MarkerKind kind = MarkerKind::None;
    // The characters from the backslash that the preview takes away; 0 for a
    // marker it leaves in place.
    std::size_t span = 0;
    ColourComponents components;  // of a colour marker
    // A colour marker's closing separator stands within reach; without it the
    // marker takes kColourSwallow characters.
    bool closed = false;
};

// A colour marker's closing separator must begin within these positions from
// its backslash, or the marker takes kColourSwallow characters.
inline constexpr std::size_t kColourSearchFirst = 3;
inline constexpr std::size_t kColourSearchLast = 32;
inline constexpr std::size_t kColourSwallow = 33;
// Characters read for a component before its terminator is given up on.
inline constexpr std::size_t kMaxComponentLength = 4;
// How far from its backslash reading a marker may look: a text edited at
// least this far behind a place reads the same there.
inline constexpr std::size_t kMarkerReach = kColourSearchLast + kSeparator.size();

// A colour component that colours: one to four digits and nothing else (no
// sign, no space), for a number from 0 to 255. The colour command accepts
// exactly these, the preview colours only with these, and lorekeep-tool
// check reports any other.
std::optional<std::uint8_t> colourComponentValue(TextView text);

namespace scanner {

// `source.at(k)` is the character k places on (0 past the end) and
// `source.size()` how many are left; a marker is read from `at(0)`.
template <class Source>
bool matches(const Source& source, std::size_t k, TextView what) {
    for (std::size_t n = 0; n < what.size(); ++n) {
        if (k + n >= source.size() || source.at(k + n) != what[n]) {
            return false;
        }
    }
    return true;
}

template <class Source>
std::size_t componentLength(const Source& source, std::size_t from, char16_t terminator) {
    for (std::size_t x = 0; x < kMaxComponentLength; ++x) {
        if (from + x < source.size() && source.at(from + x) == terminator) {
            return x;
        }
    }
    return kMaxComponentLength;
}

template <class Source>
Text take(const Source& source, std::size_t from, std::size_t count) {
    Text piece;
    for (std::size_t k = from; k < from + count && k < source.size(); ++k) {
        piece.push_back(source.at(k));
    }
    return piece;
}

// A text from a place on, as a source.
struct TextFrom {
    TextView text;
    std::size_t from;
    std::size_t size() const { return from < text.size() ? text.size() - from : 0; }
    char16_t at(std::size_t k) const { return k < size() ? text[from + k] : u'\0'; }
};

}  // namespace scanner

// The marker that starts at `source.at(0)`, as the preview reads it: a
// separator, any one character, and a tag name three characters on.
template <class Source>
Marker readMarker(const Source& source) {
    using scanner::matches;
    Marker marker;
    if (!matches(source, 0, kSeparator)) {
        return marker;
    }
    if (matches(source, kTagOffset, kTagFont)) {
        marker.kind = MarkerKind::Font;
        return marker;
    }
    if (matches(source, kTagOffset, kTagColour)) {
        marker.kind = MarkerKind::Colour;
        ColourComponents& parts = marker.components;
        std::size_t from = kColourOpen.size();
        for (std::size_t c = 0; c < 3; ++c) {
            const std::size_t length =
                scanner::componentLength(source, from, c < 2 ? u',' : kTagEnd);
            parts.start[c] = from;
            parts.text[c] = scanner::take(source, from, length);
            from += length + 1;
        }
        const auto red = colourComponentValue(parts.text[0]);
        const auto green = colourComponentValue(parts.text[1]);
        const auto blue = colourComponentValue(parts.text[2]);
        if (red && green && blue) {
            parts.colour = Rgb{*red, *green, *blue};
        }
        marker.span = kColourSwallow;
        for (std::size_t p = kColourSearchFirst; p <= kColourSearchLast; ++p) {
            if (matches(source, p, kSeparator)) {
                marker.span = p + kSeparator.size();
                marker.closed = true;
                break;
            }
        }
        return marker;
    }
    struct Fixed {
        TextView tag;
        MarkerKind kind;
        std::size_t span;
    };
    static constexpr Fixed kFixed[] = {
        {kTagLeft, MarkerKind::LeftJustify, kLeftJustify.size()},
        {kTagRight, MarkerKind::RightJustify, kRightJustify.size()},
        {kTagCentre, MarkerKind::Centre, kCentre.size()},
        {kTagLineBreak, MarkerKind::LineBreak, kLineBreak.size()},
        {kTagParagraph, MarkerKind::ParagraphBreak, kParagraphBreak.size()},
        {kTagPageBreak, MarkerKind::PageBreak, kPageBreak.size()},
    };
    for (const Fixed& fixed : kFixed) {
        if (matches(source, kTagOffset, fixed.tag)) {
            marker.kind = fixed.kind;
            marker.span = fixed.span;
            break;
        }
    }
    return marker;
}

// The marker that starts at `at` in `text`.
inline Marker markerAt(TextView text, std::size_t at) {
    return readMarker(scanner::TextFrom{text, at});
}

// How a tag is written, "\n<" to its ">" and the separator after that: its
// length from `at`, or 0 when `at` opens no such tag or no ">" closes it
// before the next separator.
std::size_t writtenTagLength(TextView text, std::size_t at);

// A written tag this long or longer is text, for writtenMarkerLength.
inline constexpr std::size_t kLongestWrittenMarker = 68;

// How far a marker as written reaches from a separator at `at`: its written
// tag (writtenTagLength) when shorter than kLongestWrittenMarker, else the
// separator alone; 0 when no separator starts at `at`. Unlike a marker's
// span, it never depends on text further off, so that a reading may start
// anywhere and is in step again a marker later: spelling and search read
// markers so.
std::size_t writtenMarkerLength(TextView text, std::size_t at);

}  // namespace lorekeep::markup
