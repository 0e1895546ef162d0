#pragma once

#include <optional>

#include "markup/text.hpp"

// The editing rules as pure functions: a text and a caret in, the new text
// and the caret to set out. Positions count UTF-16 units, as the boxes do.
namespace lorekeep::editor {

struct TextEdit {
    Text text;
    std::size_t caret = 0;  // where the caret goes; beyond the end means the end

    bool operator==(const TextEdit&) const = default;
};

// Replacing `length` characters from `start` with `text`.
struct Splice {
    std::size_t start = 0;
    std::size_t length = 0;
    TextView text;
};

// The smallest splice that turns `from` into `to`: what lies between their
// common start and their common end. Its text points into `to`.
Splice smallestChange(TextView from, TextView to);

// The marker spliced in at the caret, the caret directly behind it. A caret
// beyond the end counts as the end.
TextEdit insertAtCaret(TextView text, std::size_t caret, TextView marker);

// What the Enter key makes of a text: a line break directly before the caret
// becomes a paragraph break, a paragraph break a page break, and behind a page
// break a new line break goes in at the caret. Anywhere else a line break is
// added at the very end of the text. The caret is counted from the old caret,
// not from the end of the marker written.
TextEdit breakKeyEdit(TextView text, std::size_t caret);

}  // namespace lorekeep::editor
