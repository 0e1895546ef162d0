#include "markup/incremental_renderer.hpp"

#include <algorithm>

#include "markup/scanner.hpp"

namespace lorekeep::markup {

namespace {

using segments::ScanState;
using segments::Segment;

// How far the scan reads beyond where it stands: a segment that begins at
// least this far before an edit was rendered without reading any of it.
constexpr std::size_t kLookAhead = kMarkerReach;

// Each character of some segments' text with the colour it is shown in.
struct Shown {
    Text text;
    std::vector<CharColour> colours;
};

Shown shownText(std::vector<Segment>::const_iterator first,
                std::vector<Segment>::const_iterator last, CharColour colour) {
    Shown shown;
    for (auto part = first; part != last; ++part) {
        auto run = part->colours.begin();
        for (std::size_t k = 0; k < part->text.size(); ++k) {
            for (; run != part->colours.end() && run->start <= k; ++run) {
                colour = run->colour;
            }
            shown.colours.push_back(colour);
        }
        for (; run != part->colours.end(); ++run) {
            colour = run->colour;
        }
        shown.text.append(part->text);
    }
    return shown;
}

// Appends `next` to `part`: one segment that covers both.
void merge(Segment& part, Segment&& next) {
    const std::size_t offset = part.text.size();
    for (const ColourRun& run : next.colours) {
        segments::addColourRun(part.colours, part.entry.colour, offset + run.start, run.colour);
    }
    if (next.selection) {
        part.selection =
            segments::Selection{offset + next.selection->offset, next.selection->toEnd};
    }
    part.paragraphs.insert(part.paragraphs.end(), next.paragraphs.begin(), next.paragraphs.end());
    part.text.append(next.text);
    part.bodyLength += next.bodyLength;
}

std::size_t separatorsIn(TextView text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isParagraphSeparator));
}

}  // namespace

void IncrementalRenderer::reset(TextView body) {
    m_body.assign(body);
    m_parts.clear();
    m_last = segments::scan(body, 0, {}, {m_segmentLength}, m_parts).state;
    std::erase_if(m_parts, [](const Segment& part) { return part.bodyLength == 0; });
    m_previewLength = 0;
    for (const Segment& part : m_parts) {
        m_previewLength += part.text.size();
    }
}

PreviewPatch IncrementalRenderer::replace(std::size_t start, std::size_t removed,
                                          TextView inserted) {
    start = std::min(start, m_body.size());
    removed = std::min(removed, m_body.size() - start);
    m_body.replace(start, removed, inserted);

    // Start again at the last segment that the edit cannot have touched.
    std::size_t first = 0;
    std::size_t from = 0;
    std::size_t outputBefore = 0;
    std::size_t paragraphsBefore = 0;
    for (std::size_t k = 0, at = 0; k < m_parts.size() && at + kLookAhead <= start; ++k) {
        if (k > 0) {
            outputBefore += m_parts[k - 1].text.size();
            paragraphsBefore += m_parts[k - 1].paragraphs.size();
        }
        first = k;
        from = at;
        at += m_parts[k].bodyLength;
    }
    // The scan reads a window of the body from `from`, grown until the scan
    // gets back in step inside it: where the old segments behind the edit
    // begin (in the new body, counted from `from`), it may stop at the first
    // whose state is the old one. A stop whose reading could have reached
    // past the window's end is not trusted.
    const ScanState entry = m_parts.empty() ? ScanState{} : m_parts[first].entry;
    std::vector<Segment> fresh;
    segments::ScanEnd end;
    std::vector<std::size_t> places;
    std::size_t firstBehind = m_parts.size();
    for (std::size_t window = start + inserted.size() - from + 4 * m_segmentLength + kLookAhead;;
         window *= 2) {
        const std::size_t windowEnd = std::min(m_body.size(), from + window);
        const bool toTheEnd = windowEnd == m_body.size();
        places.clear();
        std::vector<ScanState> states;
        firstBehind = m_parts.size();
        for (std::size_t k = first, at = from; k < m_parts.size(); at += m_parts[k++].bodyLength) {
            const std::size_t place = at - removed + inserted.size();
            if (k > first && at >= start + removed) {
                if (place > windowEnd) {
                    break;
                }
                firstBehind = std::min(firstBehind, k);
                places.push_back(place - from);
                states.push_back(m_parts[k].entry);
            }
        }
        fresh.clear();
        const Text text = m_body.copy(from, windowEnd);
        end = segments::scan(text, 0, entry, {m_segmentLength, &places, &states}, fresh);
        if (toTheEnd ? end.stoppedAt <= places.size()
                     : end.stoppedAt < places.size() &&
                           from + places[end.stoppedAt] + kLookAhead <= windowEnd) {
            break;
        }
    }
    std::erase_if(fresh, [](const Segment& part) { return part.bodyLength == 0; });
    const std::size_t behind =
        end.stoppedAt < places.size() ? firstBehind + end.stoppedAt : m_parts.size();
    if (end.stoppedAt == places.size()) {
        m_last = end.state;
    }

    // The patch: what differs between the old and the new segments' text,
    // colours included.
    const auto oldFirst = m_parts.begin() + static_cast<std::ptrdiff_t>(first);
    const auto oldLast = m_parts.begin() + static_cast<std::ptrdiff_t>(behind);
    const Shown before = shownText(oldFirst, oldLast, entry.colour);
    const Shown after = shownText(fresh.begin(), fresh.end(), entry.colour);
    std::size_t same = 0;
    while (same < before.text.size() && same < after.text.size() &&
           before.text[same] == after.text[same] && before.colours[same] == after.colours[same]) {
        ++same;
    }
    std::size_t sameEnd = 0;
    while (sameEnd < before.text.size() - same && sameEnd < after.text.size() - same &&
           before.text[before.text.size() - 1 - sameEnd] ==
               after.text[after.text.size() - 1 - sameEnd] &&
           before.colours[before.text.size() - 1 - sameEnd] ==
               after.colours[after.text.size() - 1 - sameEnd]) {
        ++sameEnd;
    }
    PreviewPatch patch;
    patch.start = outputBefore + same;
    patch.removed = before.text.size() - same - sameEnd;
    patch.text = after.text.substr(same, after.text.size() - same - sameEnd);
    for (std::size_t k = 0; k < patch.text.size(); ++k) {
        if (k == 0 || after.colours[same + k] != patch.colours.back().colour) {
            patch.colours.push_back({k, after.colours[same + k]});
        }
    }

    // A character typed makes its segment cut where it was and again a
    // character later; the short piece joins the one before, so that the
    // segments after the edit keep their places in the list (moving them
    // all costs more than the edit itself in a long body).
    if (fresh.size() >= 2 && fresh.size() > behind - first &&
        fresh.back().bodyLength < m_segmentLength / 4) {
        merge(fresh[fresh.size() - 2], std::move(fresh.back()));
        fresh.pop_back();
    }
    if (fresh.size() == behind - first) {
        std::move(fresh.begin(), fresh.end(), oldFirst);
    } else {
        m_parts.erase(oldFirst, oldLast);
        m_parts.insert(m_parts.begin() + static_cast<std::ptrdiff_t>(first),
                       std::make_move_iterator(fresh.begin()),
                       std::make_move_iterator(fresh.end()));
    }

    // Paragraphs keep their text but change alignment when a justification
    // marker changes: every paragraph that ends in the new segments is given,
    // and the one still open behind them.
    patch.firstParagraph = paragraphsBefore;
    patch.startParagraph = paragraphsBefore + separatorsIn(TextView(after.text).substr(0, same));
    const std::size_t touched = separatorsIn(after.text) + 1;
    // Only the segments from the edit on, and from the end back to the last
    // caret placed: a keystroke does not walk the whole body.
    for (std::size_t k = first; k < m_parts.size() && patch.paragraphs.size() < touched; ++k) {
        for (const Alignment alignment : m_parts[k].paragraphs) {
            if (patch.paragraphs.size() < touched) {
                patch.paragraphs.push_back(alignment);
            }
        }
    }
    if (patch.paragraphs.size() < touched) {
        patch.paragraphs.push_back(m_last.currentParagraph);
    }
    m_previewLength = m_previewLength - before.text.size() + after.text.size();
    const std::size_t length = m_previewLength;
    std::optional<std::size_t> caret;
    bool toEnd = false;
    for (std::size_t k = m_parts.size(), behindIt = 0; k-- > 0;) {
        behindIt += m_parts[k].text.size();
        if (m_parts[k].selection) {
            caret = length - behindIt + m_parts[k].selection->offset;
            toEnd = m_parts[k].selection->toEnd;
            break;
        }
    }
    patch.caret = std::min(caret.value_or(0), length);
    patch.selectionLength = toEnd ? length - patch.caret : 0;
    return patch;
}

}  // namespace lorekeep::markup
