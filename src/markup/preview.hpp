#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "markup/text.hpp"

namespace lorekeep::markup {

// The character a rendered break becomes; the preview shows it as a new line.
inline constexpr char16_t kLineBreakCharacter = u'\r';

// Paragraphs end at a rendered line break and equally at a real line feed
// that reached a body by pasting: the preview shows both as a new line.
constexpr bool isParagraphSeparator(char16_t c) {
    return c == u'\r' || c == u'\n';
}

struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const Rgb&) const = default;
};

// A character's colour; empty means the pane's own default text colour.
using CharColour = std::optional<Rgb>;

enum class Alignment { Left, Right, Centre };

// From `start` to the next run's start (or the end of the text).
struct ColourRun {
    std::size_t start = 0;
    CharColour colour;
    bool operator==(const ColourRun&) const = default;
};

// A finished preview: what the pane must show. Offsets count UTF-16 units,
// exactly as the editor widgets count them.
struct RenderedPreview {
    Text text;
    std::vector<ColourRun> colours;     // ascending starts, the first at 0; empty for no text
    std::vector<Alignment> paragraphs;  // one per paragraph: separators + 1
    std::size_t caret = 0;              // selection start
    std::size_t selectionLength = 0;    // a selection always runs to the end of the text

    bool operator==(const RenderedPreview&) const = default;
};

}  // namespace lorekeep::markup
