#include <gtest/gtest.h>

#include "markup/markers.hpp"
#include "markup/renderer.hpp"
#include "support/reference_renderer.hpp"
#include "support/test_support.hpp"

namespace lorekeep::markup {
namespace {

using testing::colourOfEachCharacter;
using testing::escaped;
using testing::referenceRender;

const Text kPage = u"\r" + Text(kPageBreakLine) + u"\r";

// Each case is a body (a backslash-n in it is the game's two-character
// separator; \r is the rendered line-break character) with the text and caret
// that the preview must end with. Both renderers must give it.
struct TextCase {
    const char* name;
    Text body;
    Text text;
    std::size_t caret;
    std::size_t selectionLength = 0;

    friend void PrintTo(const TextCase& c, std::ostream* os) { *os << c.name; }
};

class RenderedText : public ::testing::TestWithParam<TextCase> {};

TEST_P(RenderedText, BothRenderersGiveTheExpectedTextAndCaret) {
    const TextCase& c = GetParam();
    for (const RenderedPreview& r : {renderPreview(c.body), referenceRender(c.body)}) {
        EXPECT_EQ(escaped(r.text), escaped(c.text));
        EXPECT_EQ(r.caret, c.caret);
        EXPECT_EQ(r.selectionLength, c.selectionLength);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Examples, RenderedText,
    ::testing::Values(
        TextCase{"LineBreak", uR"(Hello\n<br>\nWorld)", u"Hello\rWorld", 6},
        TextCase{"CentredTitleAndParagraph", uR"(\n<jc>\nTitle\n<p>\nBody)", u"Title\r\rBody", 6},
        TextCase{"RedAtTheStart", uR"(\n<dc=255,0,0>\nMore)", u"(R:255,G:0,B:0) More", 1},
        TextCase{"PageBreak", uR"(A\n<pb>\nB)", u"A" + kPage + u"B", 2},
        TextCase{"Empty", u"", u"", 0}, TextCase{"OneCharacter", u"\\", u"\\", 0},
        TextCase{"NoBackslash", u"plain words, 1 > 0", u"plain words, 1 > 0", 0},
        TextCase{"BareSeparatorStays", uR"(Line1\nLine2)", uR"(Line1\nLine2)", 0},
        TextCase{"UpperCaseTagStays", uR"(\n<JC>\nA\n<BR>\n)", uR"(\n<JC>\nA\n<BR>\n)", 0},
        TextCase{"FontTagStays", uR"(\n<font=Papyrus14>\nHi)", uR"(\n<font=Papyrus14>\nHi)", 0},
        TextCase{"TitleTagStays", uR"(\n<title=T>\nHi)", uR"(\n<title=T>\nHi)", 0},
        TextCase{"LeftThenLineBreak", uR"(\n<jl>\n\n<br>\nX)", u"\rX", 1},
        // A justification marker leaves a selection from just after the
        // character that followed it to the end.
        TextCase{"JustificationLast", uR"(\n<jc>\nabc)", u"abc", 1, 2},
        TextCase{"JustificationAtTheEnd", uR"(A\n<br>\nB\n<jr>\n)", u"A\rB", 3},
        TextCase{"MissingOpeningBracket", uR"(\nxjc>\nAB)", u"AB", 1, 1},
        TextCase{"MissingClosingBracket", uR"(\n<jc\nABC)", u"BC", 1, 1},
        TextCase{"MissingClosingSeparator", uR"(\n<jc>ABCD)", u"CD", 1, 1},
        TextCase{"ParagraphCutShortAtTheEnd", uR"(X\n<p>)", u"X\r\r", 2},
        TextCase{"BreakSpanIsAlwaysEight", uR"(\n<br>XYZ)", u"\rZ", 1},
        TextCase{"SwallowsThirtyThreeCharacters",
                 uR"(\n<dc=1,2,3>abcdefghijklmnopqrstuvwxyz0123456789)",
                 u"(R:1,G:2,B:3) vwxyz0123456789", 1},
        // The closing separator is looked for up to 32 places after the backslash.
        TextCase{"ClosingSeparatorAtTheEndOfItsReach",
                 uR"(\n<dc=1,2,3>)" + Text(20, u'x') + uR"(\nEND)", u"(R:1,G:2,B:3) END", 1},
        TextCase{"ClosingSeparatorOutOfReach", uR"(\n<dc=1,2,3>)" + Text(21, u'x') + uR"(\nEND)",
                 uR"((R:1,G:2,B:3) \nEND)", 1},
        TextCase{"ComponentsKeepTheirDigits", uR"(\n<dc=7,08,100>\nX)", u"(R:7,G:08,B:100) X", 1},
        TextCase{"FourDigitComponent", uR"(\n<dc=1000,0,0>\nX)", u"(R:1000,G:0,B:0) X", 1},
        TextCase{"EmptyComponents", uR"(\n<dc=,,>\nX)", u"(R:,G:,B:) X", 1},
        TextCase{"PageBreakGrowsAndTheScanFollows", uR"(A\n<pb>\nBCD\n<br>\nE)",
                 u"A" + kPage + u"BCD\rE", 46},
        TextCase{"BeyondSixteenBits", Text(40000, u'a') + uR"(\n<br>\nb\n<dc=1,2,3>\nc)",
                 Text(40000, u'a') + u"\rb(R:1,G:2,B:3) c", 40003},
        TextCase{"MarkersInARow", uR"(\n<br>\n\n<p>\n\n<pb>\n)", u"\r\r\r" + kPage, 4}),
    [](const auto& tc) { return std::string(tc.param.name); });

TEST(RendererColours, LaterMarkerTakesOverFromItsOwnPosition) {
    // Each marker colours its own replacement and everything after it.
    const auto r = renderPreview(uR"(a\n<dc=255,0,0>\nx\n<dc=0,255,0>\ny)");
    ASSERT_EQ(r.text, u"a(R:255,G:0,B:0) x(R:0,G:255,B:0) y");
    EXPECT_EQ(r.colours,
              (std::vector<ColourRun>{{0, {}}, {1, Rgb{255, 0, 0}}, {18, Rgb{0, 255, 0}}}));
}

TEST(RendererColours, ComponentsAreClampedOrTheColouringIsSkipped) {
    const std::pair<Text, CharColour> cases[] = {
        {uR"(\n<dc=7,08,100>\nX)", Rgb{7, 8, 100}},   {uR"(\n<dc=1000,0,0>\nX)", Rgb{255, 0, 0}},
        {uR"(\n<dc=-5,300,008>\nX)", Rgb{0, 255, 8}}, {uR"(\n<dc=,,>\nX)", CharColour{}},
        {uR"(\n<dc=a,1,2>\nX)", CharColour{}},        {uR"(\n<dc=1,2,->\nX)", CharColour{}},
        {uR"(\n<dc=1,2,3 >\nX)", CharColour{}},
    };
    for (const auto& [body, colour] : cases) {
        const auto colours = colourOfEachCharacter(renderPreview(body));
        ASSERT_FALSE(colours.empty());
        EXPECT_EQ(colours.back(), colour) << escaped(body);
    }
}

TEST(RendererAlignment, ParagraphsFollowTheirJustificationMarkers) {
    const std::pair<Text, std::vector<Alignment>> cases[] = {
        {uR"(\n<jc>\nTitle\n<p>\nBody)", {Alignment::Centre, Alignment::Centre, Alignment::Centre}},
        {uR"(L1\n<br>\n\n<jc>\nC1\n<br>\nC2)",
         {Alignment::Left, Alignment::Centre, Alignment::Centre}},
        // A marker at the very end aligns the last paragraph, the one in front of it.
        {uR"(A\n<br>\nB\n<jr>\n)", {Alignment::Left, Alignment::Right}},
        // The selection starts after the character that followed the marker:
        // a line feed standing there keeps the paragraph in front of it as it was.
        {u"A\\n<jr>\\n\nB", {Alignment::Left, Alignment::Right}},
        {uR"(\n<jr>\n\n<jl>\nX)", {Alignment::Left}},
        {uR"(\n<jc>\nA\n<br>\n\n<jr>\nB\n<br>\n\n<jl>\nC)",
         {Alignment::Centre, Alignment::Right, Alignment::Left}},
    };
    for (const auto& [body, paragraphs] : cases) {
        EXPECT_EQ(renderPreview(body).paragraphs, paragraphs) << escaped(body);
        EXPECT_EQ(referenceRender(body).paragraphs, paragraphs) << escaped(body);
    }
}

}  // namespace
}  // namespace lorekeep::markup
