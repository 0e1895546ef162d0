#include "markup/renderer.hpp"

#include "markup/markers.hpp"

namespace lorekeep::markup {

std::optional<std::uint8_t> colourComponentValue(TextView text) {
    std::size_t k = 0;
    const bool negative = !text.empty() && text[0] == u'-';
    if (negative) {
        k = 1;
    }
    if (k == text.size()) {
        return std::nullopt;
    }
    unsigned value = 0;
    for (; k < text.size(); ++k) {
        if (text[k] < u'0' || text[k] > u'9') {
            return std::nullopt;
        }
        value = std::min(value * 10 + static_cast<unsigned>(text[k] - u'0'), 1000u);
    }
    if (negative) {
        return std::uint8_t{0};
    }
    return static_cast<std::uint8_t>(std::min(value, 255u));
}

namespace {

// How far a colour marker reaches: its closing separator must begin within
// the 30 positions from the tag, or the marker takes 33 characters.
constexpr std::size_t kColourSearchFirst = 3;
constexpr std::size_t kColourSearchLast = 32;
constexpr std::size_t kColourSwallow = 33;
constexpr std::size_t kMaxComponentLength = 4;

// The text not yet scanned: replacement text waiting in front of the rest of
// the body. Every replacement starts at the scan position, so nothing behind
// it ever changes and the finished prefix can be written out once.
class Unscanned {
  public:
    explicit Unscanned(TextView body) : m_body(body) {}

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

    bool matches(std::size_t k, TextView what) const {
        for (std::size_t n = 0; n < what.size(); ++n) {
            if (k + n >= size() || at(k + n) != what[n]) {
                return false;
            }
        }
        return true;
    }

    Text take(std::size_t from, std::size_t count) const {
        Text piece;
        for (std::size_t k = from; k < from + count && k < size(); ++k) {
            piece.push_back(at(k));
        }
        return piece;
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
        std::size_t end = m_body.find(u'\\', m_next);
        if (end == m_next) {
            end = m_next + 1;
        } else if (end == TextView::npos) {
            end = m_body.size();
        }
        const TextView run = m_body.substr(m_next, end - m_next);
        m_next = end;
        return run;
    }

  private:
    TextView m_body;
    std::size_t m_next = 0;
    Text m_pending;
    std::size_t m_pendingStart = 0;
};

class Renderer {
  public:
    explicit Renderer(TextView body) : m_rest(body) { m_out.text.reserve(body.size()); }

    RenderedPreview run() {
        while (m_rest.size() >= 2) {
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
        return finish();
    }

  private:
    // Acts on the marker at the scan position. Returns false when the scan
    // simply moves on by one character.
    bool classify() {
        if (m_rest.matches(kTagOffset, kTagFont)) {
            return false;
        }
        if (m_rest.matches(kTagOffset, kTagColour)) {
            renderColour();
            return true;
        }
        if (m_rest.matches(kTagOffset, kTagLeft)) {
            justify(Alignment::Left);
        } else if (m_rest.matches(kTagOffset, kTagRight)) {
            justify(Alignment::Right);
        } else if (m_rest.matches(kTagOffset, kTagCentre)) {
            justify(Alignment::Centre);
        } else if (m_rest.matches(kTagOffset, kTagLineBreak)) {
            insertBreak(kLineBreak.size(), Text(1, kLineBreakCharacter));
        } else if (m_rest.matches(kTagOffset, kTagParagraph)) {
            insertBreak(kParagraphBreak.size(), Text(2, kLineBreakCharacter));
        } else if (m_rest.matches(kTagOffset, kTagPageBreak)) {
            Text page(1, kLineBreakCharacter);
            page.append(kPageBreakLine);
            page.push_back(kLineBreakCharacter);
            insertBreak(kPageBreak.size(), page);
        } else {
            return false;
        }
        return true;
    }

    // The marker goes; everything from the character that followed it is
    // aligned. A separator standing right there keeps the paragraph before it
    // as it was, since the selection starts just after that character.
    void justify(Alignment alignment) {
        m_rest.drop(kLeftJustify.size());
        if (m_rest.size() > 0 && isParagraphSeparator(m_rest.at(0))) {
            m_laterParagraphs = alignment;
        } else {
            m_currentParagraph = m_laterParagraphs = alignment;
        }
        setLastSelection(m_out.text.size() + 1, true);
    }

    void insertBreak(std::size_t span, const Text& replacement) {
        m_rest.drop(span);
        m_rest.pushFront(replacement);
        setLastSelection(m_out.text.size() + 1, false);
        output(m_rest.nextPlainRun());
    }

    void renderColour() {
        std::size_t j = componentLength(6, u',');
        const Text red = m_rest.take(6, j);
        std::size_t k = componentLength(7 + j, u',');
        const Text green = m_rest.take(7 + j, k);
        std::size_t m = componentLength(8 + j + k, kTagEnd);
        const Text blue = m_rest.take(8 + j + k, m);

        const auto r = colourComponentValue(red);
        const auto g = colourComponentValue(green);
        const auto b = colourComponentValue(blue);
        if (r && g && b) {
            // Everything from the marker on takes the colour: the marker's own
            // replacement inherits it from the last character it replaces.
            setColour(Rgb{*r, *g, *b});
        }

        std::size_t end = kColourSwallow;
        for (std::size_t p = kColourSearchFirst; p <= kColourSearchLast; ++p) {
            if (m_rest.matches(p, kSeparator)) {
                end = p + kSeparator.size();
                break;
            }
        }
        m_rest.drop(end);
        m_rest.pushFront(shownColour(red, green, blue));
        setLastSelection(m_out.text.size() + 1, false);
        output(m_rest.nextPlainRun());
    }

    std::size_t componentLength(std::size_t from, char16_t terminator) const {
        for (std::size_t x = 0; x < kMaxComponentLength; ++x) {
            if (from + x < m_rest.size() && m_rest.at(from + x) == terminator) {
                return x;
            }
        }
        return kMaxComponentLength;
    }

    void output(TextView run) {
        for (char16_t c : run) {
            if (isParagraphSeparator(c)) {
                m_out.paragraphs.push_back(m_currentParagraph);
                m_currentParagraph = m_laterParagraphs;
            }
        }
        m_out.text.append(run);
    }

    void setColour(Rgb colour) {
        const std::size_t at = m_out.text.size();
        if (!m_out.colours.empty() && m_out.colours.back().start == at) {
            m_out.colours.pop_back();
        }
        if (m_out.colours.empty() || m_out.colours.back().colour != CharColour(colour)) {
            m_out.colours.push_back({at, colour});
        }
    }

    void setLastSelection(std::size_t offset, bool toEnd) {
        m_lastOffset = offset;
        m_selectsToEnd = toEnd;
    }

    RenderedPreview finish() {
        m_out.paragraphs.push_back(m_currentParagraph);
        const std::size_t length = m_out.text.size();
        if (m_out.colours.empty() || m_out.colours.front().start != 0) {
            m_out.colours.insert(m_out.colours.begin(), ColourRun{0, CharColour{}});
        }
        // A colour set at the very end covers no character.
        while (!m_out.colours.empty() && m_out.colours.back().start >= length) {
            m_out.colours.pop_back();
        }
        m_out.caret = std::min(m_lastOffset, length);
        m_out.selectionLength = m_selectsToEnd ? length - m_out.caret : 0;
        return std::move(m_out);
    }

    Unscanned m_rest;
    RenderedPreview m_out;
    Alignment m_currentParagraph = Alignment::Left;
    Alignment m_laterParagraphs = Alignment::Left;
    std::size_t m_lastOffset = 0;
    bool m_selectsToEnd = false;
};

}  // namespace

RenderedPreview renderPreview(TextView body) {
    return Renderer(body).run();
}

}  // namespace lorekeep::markup
