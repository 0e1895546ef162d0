#pragma once

#include <vector>

#include "markup/chunked_text.hpp"
#include "markup/preview.hpp"
#include "markup/segments.hpp"

namespace lorekeep::markup {

// What changes in a preview after an edit of its body: `removed` characters
// from `start` give way to `text`; then the paragraphs from `firstParagraph`
// on, counted in the new preview, have the alignments `paragraphs`. Those
// cover at least every paragraph that holds a character of `text`.
struct PreviewPatch {
    std::size_t start = 0;
    std::size_t removed = 0;
    Text text;
    std::vector<ColourRun> colours;  // of `text`, starts counted from `start`; the first at 0
    std::size_t startParagraph = 0;  // the paragraph in which `start` stands
    std::size_t firstParagraph = 0;  // at most `startParagraph`
    std::vector<Alignment> paragraphs;
    std::size_t caret = 0;  // of the whole preview, as in RenderedPreview
    std::size_t selectionLength = 0;
};

// A body and its preview, kept together: after an edit of the body it renders
// again only from shortly before the edit to the first place after it where
// the scan is back in step with the last render, so the cost of an edit
// depends on the edit, not on the body's length. The result is always
// exactly what renderPreview gives for the whole body.
class IncrementalRenderer {
  public:
    IncrementalRenderer() = default;
    // Checkpoints about every `segmentLength` characters of the body: an edit
    // renders one or two such stretches.
    explicit IncrementalRenderer(std::size_t segmentLength) : m_segmentLength(segmentLength) {}

    void reset(TextView body);
    // Replaces `removed` characters of the body from `start` with `inserted`.
    PreviewPatch replace(std::size_t start, std::size_t removed, TextView inserted);

    std::size_t bodyLength() const { return m_body.size(); }
    RenderedPreview preview() const { return segments::assemble(m_parts, m_last); }

  private:
    std::size_t m_segmentLength = 1024;
    ChunkedText m_body;
    std::vector<segments::Segment> m_parts;
    segments::ScanState m_last;       // after the last segment
    std::size_t m_previewLength = 0;  // of all the segments' text
};

}  // namespace lorekeep::markup
