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

std::size_t separatorsIn(TextView text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isParagraphSeparator));
}

}  // namespace

void IncrementalRenderer::reset(TextView body) {
    m_body = Text(body);
    m_parts.clear();
    m_last = segments::scan(m_body, 0, {}, {m_segmentLength}, m_parts).state;
    std::erase_if(m_parts, [](const Segment& part) { return part.bodyLength == 0; });
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
        first = k;
        from = at;
        at += m_parts[k].bodyLength;
    }
    for (std::size_t k = 0; k < first; ++k) {
        outputBefore += m_parts[k].text.size();
        paragraphsBefore += m_parts[k].paragraphs.size();
    }
    // Where the old segments behind the edit begin, in the new body: the scan
    // may stop at the first of them where its state is the old one.
    std::vector<std::size_t> places;
    std::vector<ScanState> states;
    std::size_t firstBehind = m_parts.size();
    for (std::size_t k = first, at = from; k < m_parts.size(); at += m_parts[k++].bodyLength) {
        if (k > first && at >= start + removed) {
            firstBehind = std::min(firstBehind, k);
            places.push_back(at - removed + inserted.size());
            states.push_back(m_parts[k].entry);
        }
    }
    const ScanState entry = m_parts.empty() ? ScanState{} : m_parts[first].entry;
    std::vector<Segment> fresh;
    const segments::ScanEnd end =
        segments::scan(m_body, from, entry, {m_segmentLength, &places, &states}, fresh);
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

    m_parts.erase(oldFirst, oldLast);
    m_parts.insert(m_parts.begin() + static_cast<std::ptrdiff_t>(first),
                   std::make_move_iterator(fresh.begin()), std::make_move_iterator(fresh.end()));

    // Paragraphs keep their text but change alignment when a justification
    // marker changes: every paragraph that ends in the new segments is given,
    // and the one still open behind them.
    patch.firstParagraph = paragraphsBefore;
    patch.startParagraph = paragraphsBefore + separatorsIn(TextView(after.text).substr(0, same));
    const std::size_t touched = separatorsIn(after.text) + 1;
    std::size_t paragraph = 0;
    std::size_t length = 0;
    std::optional<std::size_t> caret;
    bool toEnd = false;
    for (const Segment& part : m_parts) {
        if (paragraph + part.paragraphs.size() > patch.firstParagraph &&
            paragraph < patch.firstParagraph + touched) {
            for (std::size_t k = 0; k < part.paragraphs.size(); ++k) {
                if (paragraph + k >= patch.firstParagraph &&
                    paragraph + k < patch.firstParagraph + touched) {
                    patch.paragraphs.push_back(part.paragraphs[k]);
                }
            }
        }
        paragraph += part.paragraphs.size();
        if (part.selection) {
            caret = length + part.selection->offset;
            toEnd = part.selection->toEnd;
        }
        length += part.text.size();
    }
    if (patch.paragraphs.size() < touched) {
        patch.paragraphs.push_back(m_last.currentParagraph);
    }
    patch.caret = std::min(caret.value_or(0), length);
    patch.selectionLength = toEnd ? length - patch.caret : 0;
    return patch;
}

}  // namespace lorekeep::markup
