#pragma once

#include <algorithm>

#include "markup/incremental_renderer.hpp"

namespace lorekeep::testing {

// A preview as a pane holds it after applying `patch`: the characters and
// their colours spliced, the touched paragraphs given their alignments.
inline void applyPatch(markup::RenderedPreview& shown, const markup::PreviewPatch& patch) {
    // The colour of each character, from the runs of a text of `length`.
    const auto perCharacter = [](const std::vector<markup::ColourRun>& runs, std::size_t length) {
        std::vector<markup::CharColour> colours;
        for (std::size_t run = 0; run < runs.size(); ++run) {
            const std::size_t end = run + 1 < runs.size() ? runs[run + 1].start : length;
            colours.insert(colours.end(), end - runs[run].start, runs[run].colour);
        }
        return colours;
    };
    std::vector<markup::CharColour> colours = perCharacter(shown.colours, shown.text.size());
    const std::vector<markup::CharColour> added = perCharacter(patch.colours, patch.text.size());
    const auto at = [](auto& vector, std::size_t k) {
        return vector.begin() + static_cast<std::ptrdiff_t>(k);
    };
    const TextView gone = TextView(shown.text).substr(patch.start, patch.removed);
    const auto endedParagraphs = static_cast<std::size_t>(
        std::count_if(gone.begin(), gone.end(), markup::isParagraphSeparator));
    colours.erase(at(colours, patch.start), at(colours, patch.start + patch.removed));
    colours.insert(at(colours, patch.start), added.begin(), added.end());
    shown.text.replace(patch.start, patch.removed, patch.text);
    const auto addedParagraphs = static_cast<std::size_t>(
        std::count_if(patch.text.begin(), patch.text.end(), markup::isParagraphSeparator));
    shown.paragraphs.erase(at(shown.paragraphs, patch.startParagraph),
                           at(shown.paragraphs, patch.startParagraph + endedParagraphs + 1));
    // The paragraphs the new text makes are left unaligned; the patch must
    // align each of them.
    shown.paragraphs.insert(at(shown.paragraphs, patch.startParagraph), addedParagraphs + 1,
                            markup::Alignment{-1});
    if (patch.firstParagraph + patch.paragraphs.size() <= shown.paragraphs.size()) {
        std::copy(patch.paragraphs.begin(), patch.paragraphs.end(),
                  at(shown.paragraphs, patch.firstParagraph));
    } else {
        shown.paragraphs.clear();  // a patch beyond the preview's end: fails the comparison
    }
    shown.colours.clear();
    for (std::size_t k = 0; k < colours.size(); ++k) {
        if (k == 0 || colours[k] != shown.colours.back().colour) {
            shown.colours.push_back({k, colours[k]});
        }
    }
    shown.caret = patch.caret;
    shown.selectionLength = patch.selectionLength;
}

}  // namespace lorekeep::testing
