#include "markup/preview_pane.hpp"

namespace lorekeep::markup {

void PreviewPane::ShowRendered(const RenderedPreview& preview) {
    SetText(preview.text);
    // Each step colours from its start to the end, and the next one paints
    // over what follows it, so applying the runs in order leaves each
    // character with its own run's colour. Only a leading run can be the
    // default colour, and a fresh text already has it.
    for (const ColourRun& run : preview.colours) {
        if (run.colour) {
            SelectToEnd(run.start);
            ColourSelection(*run.colour);
        }
    }
    const auto starts = ParagraphStarts(preview.text);
    Alignment previous = Alignment::Left;
    for (std::size_t k = 0; k < preview.paragraphs.size() && k < starts.size(); ++k) {
        if (preview.paragraphs[k] != previous) {
            SelectToEnd(starts[k]);
            AlignSelection(preview.paragraphs[k]);
            previous = preview.paragraphs[k];
        }
    }
    if (preview.selectionLength > 0) {
        SelectToEnd(preview.caret);
    } else {
        PlaceCaret(preview.caret);
    }
}

}  // namespace lorekeep::markup
