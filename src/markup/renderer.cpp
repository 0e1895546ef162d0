#include "markup/renderer.hpp"

#include "markup/markers.hpp"
#include "markup/scanner.hpp"
#include "markup/segments.hpp"

namespace lorekeep::markup {

namespace {

// Room for what the markers near a segment's end add to its text.
constexpr std::size_t kSegmentSlack = 64;

// The text not yet scanned: replacement text waiting in front of the rest of
// the body. Every replacement starts at the scan position, so nothing behind
// it ever changes and the finished prefix can be written out once.
class Unscanned {
  public:
    Unscanned(TextView body, std::size_t from) : m_body(body), m_next(from) {}

    // Plain runs from the body end at `at` at the latest.
    void limitRunsTo(std::size_t at) { m_limit = at; }

    // Nothing pending: the scan stands in the body itself, at `position()`.
    bool settled() const { return m_pendingStart == m_pending.size(); }
    std::size_t position() const { return m_next; }

    std::size_t size() const { return m_pending.size() - m_pendingStart + m_body.size() - m_next; }

    // The character `k` places ahead, or 0 past the end (no marker test can
    // match a 0, since markers hold none).
    char16_t at(std::size_t k) const {
        const std::size_t waiting = m_pending.size() - m_pendingStart;
        if (k < waiting) {
            return m_pending[m_pendingStart + k];
        }
        k -= waiting;
        return m_next + k < m_body.size() ? m_body[m_next + k] : u'\0';
    }

    void drop(std::size_t count) {
        const std::size_t waiting = m_pending.size() - m_pendingStart;
        const std::size_t fromPending = std::min(count, waiting);
        m_pendingStart += fromPending;
        m_next = std::min(m_body.size(), m_next + (count - fromPending));
    }

    void pushFront(TextView text) {
        Text joined(text);
        joined.append(m_pending, m_pendingStart);
        m_pending = std::move(joined);
        m_pendingStart = 0;
    }

    // Hands over the next piece that holds no backslash, or the backslash
    // itself; at least one character.
    TextView nextPlainRun() {
        if (m_pendingStart < m_pending.size()) {
            return TextView(m_pending).substr(m_pendingStart++, 1);
        }
        // Looks no further than the limit, so that runs stay short to find.
        const std::size_t limit = std::min(m_body.size(), std::max(m_limit, m_next + 1));
        std::size_t end = m_body.substr(0, limit).find(u'\\', m_next);
        if (end == m_next) {
            end = m_next + 1;
        } else if (end == TextView::npos) {
            end = limit;
        }
        const TextView run = m_body.substr(m_next, end - m_next);
        m_next = end;
        return run;
    }

  private:
    TextView m_body;
    std::size_t m_next;
    std::size_t m_limit = TextView::npos;
    Text m_pending;
    std::size_t m_pendingStart = 0;
};

class Renderer {
  public:
    Renderer(TextView body, std::size_t from, const segments::ScanState& entry,
             const segments::Cuts& cuts, std::vector<segments::Segment>& out)
        : m_rest(body, from), m_position(from), m_state(entry), m_cuts(cuts), m_out(out) {
        startSegment();
    }

    segments::ScanEnd run() {
        const std::size_t placeCount = m_cuts.places != nullptr ? m_cuts.places->size() : 0;
        while (m_rest.size() >= 2) {
            if (m_rest.settled()) {
                const std::size_t at = m_rest.position();
                while (m_nextPlace < placeCount && (*m_cuts.places)[m_nextPlace] < at) {
                    ++m_nextPlace;
                }
                if (m_nextPlace < placeCount && (*m_cuts.places)[m_nextPlace] == at) {
                    if ((*m_cuts.states)[m_nextPlace] == m_state) {
                        endSegment(at);
                        return {m_state, m_nextPlace};
                    }
                    cutAt(at);
                } else if (at - m_position >= m_cuts.length) {
                    cutAt(at);
                }
                // A plain run stops where the next cut or stop may be, so
                // that text without markers is cut into segments too.
                std::size_t limit = m_cuts.length > m_rest.size()
                                        ? m_rest.position() + m_rest.size()
                                        : m_position + m_cuts.length;
                if (m_nextPlace < placeCount) {
                    limit = std::min(limit, (*m_cuts.places)[m_nextPlace]);
                }
                m_rest.limitRunsTo(limit);
            }
            if (m_rest.at(0) != u'\\' || m_rest.at(1) != u'n') {
                output(m_rest.nextPlainRun());
                continue;
            }
            if (!classify()) {
                output(m_rest.nextPlainRun());
            }
        }
        while (m_rest.size() > 0) {
            output(m_rest.nextPlainRun());
        }
        endSegment(m_rest.position());
        return {m_state, placeCount};
    }

  private:
    segments::Segment& segment() { return m_out.back(); }

    void startSegment() {
        m_out.emplace_back();
        segment().entry = m_state;
        segment().text.reserve(std::min(m_cuts.length, m_rest.size()) + kSegmentSlack);
    }

    void endSegment(std::size_t at) { segment().bodyLength = at - m_position; }

    void cutAt(std::size_t at) {
        if (at == m_position) {
            return;
        }
        endSegment(at);
        m_position = at;
        startSegment();
    }

    // Acts on the marker at the scan position. Returns false when the scan
    // simply moves on by one character.
    bool classify() {
        const Marker marker = readMarker(m_rest);
        switch (marker.kind) {
            case MarkerKind::None:
            case MarkerKind::Font:
                return false;
            case MarkerKind::Colour:
                renderColour(marker);
                break;
            case MarkerKind::LeftJustify:
                justify(marker.span, Alignment::Left);
                break;
            case MarkerKind::RightJustify:
                justify(marker.span, Alignment::Right);
                break;
            case MarkerKind::Centre:
                justify(marker.span, Alignment::Centre);
                break;
            case MarkerKind::LineBreak:
                insertBreak(marker.span, Text(1, kLineBreakCharacter));
                break;
            case MarkerKind::ParagraphBreak:
                insertBreak(marker.span, Text(2, kLineBreakCharacter));
                break;
            case MarkerKind::PageBreak: {
                Text page(1, kLineBreakCharacter);
                page.append(kPageBreakLine);
                page.push_back(kLineBreakCharacter);
                insertBreak(marker.span, page);
                break;
            }
        }
        return true;
    }

    // The marker goes; everything from the character that followed it is
    // aligned. A separator standing right there keeps the paragraph before it
    // as it was, since the selection starts just after that character.
    void justify(std::size_t span, Alignment alignment) {
        m_rest.drop(span);
        if (m_rest.size() > 0 && isParagraphSeparator(m_rest.at(0))) {
            m_state.laterParagraphs = alignment;
        } else {
            m_state.currentParagraph = m_state.laterParagraphs = alignment;
        }
        setLastSelection(true);
    }

    void insertBreak(std::size_t span, const Text& replacement) {
        m_rest.drop(span);
        m_rest.pushFront(replacement);
        setLastSelection(false);
        output(m_rest.nextPlainRun());
    }

    void renderColour(const Marker& marker) {
        const ColourComponents& parts = marker.components;
        if (parts.colour) {
            // Everything from the marker on takes the colour: the marker's own
            // replacement inherits it from the last character it replaces.
            setColour(*parts.colour);
        }
        m_rest.drop(marker.span);
        m_rest.pushFront(shownColour(parts.text[0], parts.text[1], parts.text[2]));
        setLastSelection(false);
        output(m_rest.nextPlainRun());
    }

    void output(TextView run) {
        segments::Segment& out = segment();
        for (char16_t c : run) {
            if (isParagraphSeparator(c)) {
                out.paragraphs.push_back(m_state.currentParagraph);
                m_state.currentParagraph = m_state.laterParagraphs;
            }
        }
        out.text.append(run);
    }

    void setColour(Rgb colour) {
        segments::Segment& out = segment();
        segments::addColourRun(out.colours, out.entry.colour, out.text.size(), colour);
        m_state.colour = colour;
    }

    // The caret goes just after the next character written.
    void setLastSelection(bool toEnd) {
        segment().selection = segments::Selection{segment().text.size() + 1, toEnd};
    }

    Unscanned m_rest;
    std::size_t m_position;  // where the current segment begins in the body
    segments::ScanState m_state;
    const segments::Cuts& m_cuts;
    std::vector<segments::Segment>& m_out;
    std::size_t m_nextPlace = 0;
};

}  // namespace

namespace segments {

ScanEnd scan(TextView body, std::size_t from, const ScanState& entry, const Cuts& cuts,
             std::vector<Segment>& out) {
    return Renderer(body, from, entry, cuts, out).run();
}

void addColourRun(std::vector<ColourRun>& runs, const CharColour& before, std::size_t at,
                  const CharColour& colour) {
    if (!runs.empty() && runs.back().start == at) {
        runs.pop_back();
    }
    const CharColour& current = runs.empty() ? before : runs.back().colour;
    if (current != colour) {
        runs.push_back({at, colour});
    }
}

namespace {

template <typename Parts>
RenderedPreview assembleParts(Parts&& parts, const ScanState& last) {
    RenderedPreview out;
    if (parts.size() == 1) {
        out.text = std::move(parts.front().text);
    } else {
        std::size_t length = 0;
        for (const Segment& part : parts) {
            length += part.text.size();
        }
        out.text.reserve(length);
    }
    std::optional<std::size_t> caret;
    bool toEnd = false;
    std::size_t base = 0;
    CharColour colour;
    for (const Segment& part : parts) {
        for (const ColourRun& run : part.colours) {
            addColourRun(out.colours, colour, base + run.start, run.colour);
        }
        if (!part.colours.empty()) {
            colour = part.colours.back().colour;
        }
        out.paragraphs.insert(out.paragraphs.end(), part.paragraphs.begin(), part.paragraphs.end());
        if (part.selection) {
            caret = base + part.selection->offset;
            toEnd = part.selection->toEnd;
        }
        if (parts.size() != 1) {
            out.text.append(part.text);
        }
        base = out.text.size();
    }
    out.paragraphs.push_back(last.currentParagraph);
    const std::size_t length = out.text.size();
    if (out.colours.empty() || out.colours.front().start != 0) {
        out.colours.insert(out.colours.begin(), ColourRun{0, CharColour{}});
    }
    // A colour set at the very end covers no character.
    while (!out.colours.empty() && out.colours.back().start >= length) {
        out.colours.pop_back();
    }
    out.caret = std::min(caret.value_or(0), length);
    out.selectionLength = toEnd ? length - out.caret : 0;
    return out;
}

}  // namespace

RenderedPreview assemble(std::vector<Segment>&& parts, const ScanState& last) {
    return assembleParts(std::move(parts), last);
}

RenderedPreview assemble(const std::vector<Segment>& parts, const ScanState& last) {
    return assembleParts(parts, last);
}

}  // namespace segments

RenderedPreview renderPreview(TextView body) {
    std::vector<segments::Segment> parts;
    const segments::ScanEnd end = segments::scan(body, 0, {}, {}, parts);
    return segments::assemble(std::move(parts), end.state);
}

}  // namespace lorekeep::markup
