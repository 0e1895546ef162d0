#include "support/reference_renderer.hpp"

#include <algorithm>
#include <tuple>

#include "markup/markers.hpp"
#include "markup/renderer.hpp"
#include "markup/scanner.hpp"

namespace lorekeep::testing {

namespace {

using markup::Alignment;
using markup::CharColour;
using markup::RenderedPreview;

// A rich-text box held in memory, character by character. Formatting follows
// the characters: a replacement keeps the colour of every character it does
// not replace, and the characters it inserts take the colour of the last
// character they replace (of the character in front when nothing is
// replaced; the default colour at the very start). Paragraphs split and join
// with their separators, keeping the alignment of the paragraph that was
// split or of the first one that was joined.
class ModelPane {
  public:
    explicit ModelPane(TextView text)
        : m_text(text), m_colours(text.size()), m_paragraphs(separators(text) + 1) {}

    Text readText() const { return m_text; }

    void replaceText(std::size_t offset, std::size_t count, TextView with) {
        offset = std::min(offset, m_text.size());
        count = std::min(count, m_text.size() - offset);
        const CharColour inserted = count > 0    ? m_colours[offset + count - 1]
                                    : offset > 0 ? m_colours[offset - 1]
                                                 : CharColour();
        const auto paragraph = m_paragraphs.begin() + paragraphAt(offset);
        const Alignment alignment = *paragraph;
        const auto joined = separators(TextView(m_text).substr(offset, count)) + 1;
        m_paragraphs.insert(m_paragraphs.erase(paragraph, paragraph + joined), separators(with) + 1,
                            alignment);
        m_text.replace(offset, count, with);
        const auto at =
            m_colours.erase(m_colours.begin() + offset, m_colours.begin() + offset + count);
        m_colours.insert(at, with.size(), inserted);
        select(m_start, std::min(m_length, m_text.size() - std::min(m_start, m_text.size())));
    }

    // From `offset` for `length` characters; both cut at the end of the text.
    void select(std::size_t offset, std::size_t length) {
        m_start = std::min(offset, m_text.size());
        m_length = std::min(length, m_text.size() - m_start);
    }
    void placeCaret(std::size_t offset) { select(offset, 0); }
    void selectToEnd(std::size_t offset) { select(offset, m_text.size()); }

    void colourSelection(markup::Rgb colour) {
        std::fill_n(m_colours.begin() + m_start, m_length, CharColour(colour));
    }

    // Every paragraph the selection touches; an empty selection aligns the
    // paragraph in which it stands.
    void alignSelection(Alignment alignment) {
        std::fill(m_paragraphs.begin() + paragraphAt(m_start),
                  m_paragraphs.begin() + paragraphAt(m_start + m_length) + 1, alignment);
    }

    RenderedPreview snapshot() const {
        RenderedPreview preview{m_text, {}, m_paragraphs, m_start, m_length};
        for (std::size_t k = 0; k < m_colours.size(); ++k) {
            if (k == 0 || m_colours[k] != m_colours[k - 1]) {
                preview.colours.push_back({k, m_colours[k]});
            }
        }
        return preview;
    }

  private:
    static std::ptrdiff_t separators(TextView text) {
        return std::count_if(text.begin(), text.end(), markup::isParagraphSeparator);
    }
    std::ptrdiff_t paragraphAt(std::size_t offset) const {
        return separators(TextView(m_text).substr(0, offset));
    }

    Text m_text;
    std::vector<CharColour> m_colours;
    std::vector<Alignment> m_paragraphs;
    std::size_t m_start = 0;
    std::size_t m_length = 0;
};

// "The n characters from p", 1-based, cut short at the end of T.
Text from(const Text& t, long p, long n) {
    if (p < 1 || p > static_cast<long>(t.size()) || n <= 0) {
        return {};
    }
    return t.substr(static_cast<std::size_t>(p - 1), static_cast<std::size_t>(n));
}

// A test on characters beyond the end of T fails.
bool charactersAre(const Text& t, long p, std::u16string_view what) {
    return p >= 1 && p - 1 + static_cast<long>(what.size()) <= static_cast<long>(t.size()) &&
           from(t, p, static_cast<long>(what.size())) == what;
}

// "Replace the n characters from i by X", then place the caret at offset i.
void replace(ModelPane& pane, long i, long n, std::u16string_view x) {
    pane.replaceText(static_cast<std::size_t>(i - 1), static_cast<std::size_t>(n), x);
    pane.placeCaret(static_cast<std::size_t>(i));
}

// The length of a colour component from `from`: up to its terminator, 4 at most.
long componentLength(const Text& t, long from, std::u16string_view terminator) {
    long x = 0;
    while (x <= 3 && !charactersAre(t, from + x, terminator)) {
        ++x;
    }
    return x;
}

void colour(ModelPane& pane, const Text& t, long i) {
    const long j = componentLength(t, i + 6, u",");  // C1
    const Text r = from(t, i + 6, j);
    const long k = componentLength(t, i + 7 + j, u",");  // C2
    const Text g = from(t, i + 7 + j, k);
    const long m = componentLength(t, i + 8 + j + k, u">");  // C3
    const Text b = from(t, i + 8 + j + k, m);
    pane.selectToEnd(static_cast<std::size_t>(i));  // C4
    const auto red = markup::colourComponentValue(r);
    const auto green = markup::colourComponentValue(g);
    const auto blue = markup::colourComponentValue(b);
    if (red && green && blue) {
        pane.colourSelection({*red, *green, *blue});
    }
    long e = i + 3;  // C5
    while (e <= i + 32 && !charactersAre(t, e, markup::kSeparator)) {
        ++e;
    }
    const long end = e <= i + 32 ? e + 2 : i + 33;
    replace(pane, i, end - i, markup::shownColour(r, g, b));  // C6
}

void parseInPlace(ModelPane& pane) {
    const Text cr(1, markup::kLineBreakCharacter);
    // Rows 3 to 8 of the tag table: justifications, then breaks with their span.
    const std::tuple<std::u16string_view, Alignment, long, Text> fixed[] = {
        {markup::kTagLeft, Alignment::Left, 0, {}},
        {markup::kTagRight, Alignment::Right, 0, {}},
        {markup::kTagCentre, Alignment::Centre, 0, {}},
        {markup::kTagLineBreak, {}, 8, cr},
        {markup::kTagParagraph, {}, 7, cr + cr},
        {markup::kTagPageBreak, {}, 8, cr + Text(markup::kPageBreakLine) + cr}};
    for (long i = 1;;) {                         // step 1
        const Text t = pane.readText();          // every test reads what the last replacement left
        if (i >= static_cast<long>(t.size())) {  // step 2
            return;
        }
        if (!charactersAre(t, i, markup::kSeparator) ||
            charactersAre(t, i + 3, markup::kTagFont)) {  // steps 3 and 4, row 1
            ++i;
            continue;
        }
        if (charactersAre(t, i + 3, markup::kTagColour)) {  // row 2
            colour(pane, t, i);
        }
        for (const auto& [tag, alignment, span, replacement] : fixed) {
            if (!charactersAre(t, i + 3, tag)) {
                continue;
            }
            if (span == 0) {  // J1 to J3, then the same position again
                pane.replaceText(static_cast<std::size_t>(i - 1), 8, u"");
                pane.selectToEnd(static_cast<std::size_t>(i));  // offset i, not i - 1
                pane.alignSelection(alignment);
                --i;
            } else {
                replace(pane, i, span, replacement);
            }
            break;
        }
        ++i;  // step 5
    }
}

}  // namespace

RenderedPreview referenceRender(TextView body) {
    ModelPane pane(body);
    parseInPlace(pane);
    return pane.snapshot();
}

}  // namespace lorekeep::testing
