#pragma once

#include "markup/preview.hpp"

namespace lorekeep::markup {

// A rich-text box as the renderer sees it. Offsets beyond the end of the text
// count as the end. Formatting follows the characters: a replacement keeps the
// colour of every character it does not replace, and the characters it inserts
// take the colour of the last character they replace (of the character in
// front when nothing is replaced; the default colour at the very start).
// Paragraphs split and join with their separators, keeping the alignment of
// the paragraph that was split or of the first one that was joined.
class PreviewPane {
  public:
    virtual ~PreviewPane() = default;

    virtual Text ReadText() const = 0;

    // The whole text, freshly: default colour, every paragraph left-aligned,
    // caret at the start.
    virtual void SetText(TextView text) = 0;

    // Replaces `count` characters from `offset` (fewer when the text ends first).
    virtual void ReplaceText(std::size_t offset, std::size_t count, TextView with) = 0;

    virtual void PlaceCaret(std::size_t offset) = 0;
    virtual void SelectToEnd(std::size_t offset) = 0;

    // An empty selection colours nothing.
    virtual void ColourSelection(Rgb colour) = 0;

    // Every paragraph the selection touches; an empty selection aligns the
    // paragraph in which it stands.
    virtual void AlignSelection(Alignment alignment) = 0;

    // Shows a finished preview. The default builds it from the operations
    // above; a real widget builds its document in one pass instead.
    virtual void ShowRendered(const RenderedPreview& preview);
};

}  // namespace lorekeep::markup
