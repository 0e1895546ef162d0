#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

#include "markup/preview.hpp"

// The renderer's scan, cut into segments at places where the scan stands in
// the body with nothing pending, so that a later scan can start again there.
// Shared by the one-pass renderer and the incremental one; not for callers.
namespace lorekeep::markup::segments {

// Everything that decides how the rest of a body renders, where the scan
// stands in the body with nothing pending.
struct ScanState {
    Alignment currentParagraph = Alignment::Left;  // of the paragraph not yet ended
    Alignment laterParagraphs = Alignment::Left;   // of paragraphs begun from here on
    CharColour colour;                             // of what is written next
    bool operator==(const ScanState&) const = default;
};

// Where the caret goes after the last break, colour or justification marker.
struct Selection {
    std::size_t offset = 0;  // from the start of its segment's text
    bool toEnd = false;
};

struct Segment {
    std::size_t bodyLength = 0;  // body characters the segment covers
    ScanState entry;
    Text text;                           // what they render to
    std::vector<ColourRun> colours;      // colour changes, starts counted from `text`'s start
    std::vector<Alignment> paragraphs;   // of each paragraph that ends in `text`
    std::optional<Selection> selection;  // the last one set inside the segment
};

// Where a scan cuts its segments and where it may stop: a new segment begins
// at the first place at least `length` body characters after the last
// cut, and at each of `places` (ascending) that the scan reaches. At
// `places[k]` the scan stops instead when its state equals `states[k]`.
struct Cuts {
    std::size_t length = std::numeric_limits<std::size_t>::max();
    const std::vector<std::size_t>* places = nullptr;
    const std::vector<ScanState>* states = nullptr;
};

struct ScanEnd {
    ScanState state;        // where the scan ended
    std::size_t stoppedAt;  // index into `places`, or `places->size()` at the body's end
};

// Scans `body` from `from` (a place where nothing is pending) in `entry`
// state, appending segments to `out`.
ScanEnd scan(TextView body, std::size_t from, const ScanState& entry, const Cuts& cuts,
             std::vector<Segment>& out);

// Adds a colour change at `at` to runs whose colour in force before it is
// `before`: a change at the same place replaces the earlier one, and one that
// changes nothing is left out.
void addColourRun(std::vector<ColourRun>& runs, const CharColour& before, std::size_t at,
                  const CharColour& colour);

// The whole preview that segments make, `last` being the state after them.
RenderedPreview assemble(std::vector<Segment>&& parts, const ScanState& last);
RenderedPreview assemble(const std::vector<Segment>& parts, const ScanState& last);

}  // namespace lorekeep::markup::segments
