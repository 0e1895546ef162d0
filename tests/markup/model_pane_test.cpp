#include <gtest/gtest.h>

#include "markup/model_pane.hpp"

namespace lorekeep::markup {
namespace {

constexpr Rgb kRed{255, 0, 0};

// "abcdef" with its last three characters red.
ModelPane HalfRed() {
    ModelPane pane;
    pane.SetText(u"abcdef");
    pane.SelectToEnd(3);
    pane.ColourSelection(kRed);
    return pane;
}

TEST(ModelPane, InsertedCharactersTakeTheColourOfTheLastReplacedOne) {
    struct Case {
        std::size_t offset, count;
        std::u16string_view with;
        std::vector<CharColour> expected;
    };
    const CharColour d{}, r{kRed};
    const Case cases[] = {
        // replacing "cd": the last replaced character is red
        {2, 2, u"XY", {d, d, r, r, r, r}},
        // replacing "bc": the last replaced character is default
        {1, 2, u"XYZ", {d, d, d, d, r, r, r}},
        // pure insertion: the character in front decides
        {4, 0, u"X", {d, d, d, r, r, r, r}},
        {3, 0, u"X", {d, d, d, d, r, r, r}},
        // at the very start, the default colour
        {0, 0, u"X", {d, d, d, d, r, r, r}},
        // a span running past the end takes what remains
        {5, 10, u"XY", {d, d, d, r, r, r, r}},
    };
    for (const Case& c : cases) {
        ModelPane pane = HalfRed();
        pane.ReplaceText(c.offset, c.count, c.with);
        EXPECT_EQ(pane.colours(), c.expected) << c.offset << "," << c.count;
    }
}

TEST(ModelPane, ParagraphsSplitAndJoinKeepingTheFirstAlignment) {
    ModelPane pane;
    pane.SetText(u"a\rb\rc");
    pane.SelectToEnd(2);  // "b" and "c"
    pane.AlignSelection(Alignment::Right);
    ASSERT_EQ(pane.paragraphs(),
              (std::vector<Alignment>{Alignment::Left, Alignment::Right, Alignment::Right}));

    pane.ReplaceText(2, 0, u"x\ry");  // splits "b": both halves right
    EXPECT_EQ(pane.paragraphs(), (std::vector<Alignment>{Alignment::Left, Alignment::Right,
                                                         Alignment::Right, Alignment::Right}));

    pane.ReplaceText(1, 3, u"");  // removes "\rx\r": everything joins the first paragraph
    EXPECT_EQ(pane.ReadText(), u"ayb\rc");
    EXPECT_EQ(pane.paragraphs(), (std::vector<Alignment>{Alignment::Left, Alignment::Right}));
}

TEST(ModelPane, EmptySelectionAtTheEndAlignsTheLastParagraph) {
    ModelPane pane;
    pane.SetText(u"a\rb");
    pane.SelectToEnd(10);
    pane.AlignSelection(Alignment::Centre);
    EXPECT_EQ(pane.paragraphs(), (std::vector<Alignment>{Alignment::Left, Alignment::Centre}));
    // A selection starting right after a separator leaves the paragraph before it.
    pane.SelectToEnd(2);
    pane.AlignSelection(Alignment::Right);
    EXPECT_EQ(pane.paragraphs(), (std::vector<Alignment>{Alignment::Left, Alignment::Right}));
    // One starting just before a separator touches the paragraph it ends.
    pane.SelectToEnd(1);
    pane.AlignSelection(Alignment::Centre);
    EXPECT_EQ(pane.paragraphs(), (std::vector<Alignment>{Alignment::Centre, Alignment::Centre}));
}

}  // namespace
}  // namespace lorekeep::markup
