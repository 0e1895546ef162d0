#include <gtest/gtest.h>

#include "editor/text_edits.hpp"
#include "support/test_support.hpp"

namespace lorekeep::editor {
namespace {

// One Enter on a text and caret, with the text and caret that must follow.
struct BreakCase {
    const char* name;
    Text text;
    std::size_t caret;
    Text after;
    std::size_t caretAfter;
};

class BreakKey : public ::testing::TestWithParam<BreakCase> {};

TEST_P(BreakKey, WritesTheRightMarker) {
    const BreakCase& c = GetParam();
    EXPECT_EQ(breakKeyEdit(c.text, c.caret), (TextEdit{c.after, c.caretAfter}));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BreakKey,
    ::testing::Values(
        BreakCase{"EmptyEditor", u"", 0, uR"(\n<br>\n)", 8},
        BreakCase{"SevenLettersAtTheEnd", u"abcdefg", 7, uR"(abcdefg\n<br>\n)", 15},
        // The caret is counted from the old one: 15 lies beyond the end.
        BreakCase{"ParagraphAlone", uR"(\n<p>\n)", 7, uR"(\n<pb>\n)", 15},
        BreakCase{"LineBreakBeforeALetter", uR"(a\n<br>\nb)", 9, uR"(a\n<p>\nb)", 16},
        BreakCase{"PageBreakBeforeALetter", uR"(a\n<pb>\nb)", 9, uR"(a\n<pb>\n\n<br>\nb)", 17},
        BreakCase{"CaretInsideAppendsAtTheEnd", u"hello world", 5, uR"(hello world\n<br>\n)", 13},
        BreakCase{"MarkerFollowedByASpace", uR"(\n<br>\n )", 9, uR"(\n<br>\n \n<br>\n)", 17},
        BreakCase{"CapitalsAreNotAMarker", uR"(\n<BR>\n)", 8, uR"(\n<BR>\n\n<br>\n)", 16},
        BreakCase{"CaretAtTheStartOfAMarker", uR"(\n<br>\n)", 0, uR"(\n<br>\n\n<br>\n)", 8},
        BreakCase{"CaretBeyondTheEnd", u"ab", 99, uR"(ab\n<br>\n)", 10}),
    [](const auto& tc) { return std::string(tc.param.name); });

TEST(BreakKey, EntersAtTheEndCycleThroughTheBreaks) {
    TextEdit edit{u"x", 1};
    const Text expected[] = {uR"(x\n<br>\n)", uR"(x\n<p>\n)", uR"(x\n<pb>\n)",
                             uR"(x\n<pb>\n\n<br>\n)", uR"(x\n<pb>\n\n<p>\n)"};
    for (const Text& text : expected) {
        edit = breakKeyEdit(edit.text, std::min(edit.caret, edit.text.size()));
        EXPECT_EQ(edit.text, text);
        EXPECT_GE(edit.caret, text.size());
    }
}

TEST(InsertAtCaret, SplicesTheMarkerAndPutsTheCaretBehindIt) {
    EXPECT_EQ(insertAtCaret(u"Hello", 0, u"<m>"), (TextEdit{u"<m>Hello", 3}));
    EXPECT_EQ(insertAtCaret(u"Hello", 2, u"<m>"), (TextEdit{u"He<m>llo", 5}));
    EXPECT_EQ(insertAtCaret(u"Hello", 50, u"<m>"), (TextEdit{u"Hello<m>", 8}));
}

TEST(WholeNumber, AcceptsSignsAndSpacesAroundDigitsOnly) {
    EXPECT_EQ(wholeNumber(u"007"), 7);
    EXPECT_EQ(wholeNumber(u" +12 "), 12);
    EXPECT_EQ(wholeNumber(u"-1"), -1);
    for (const char* refused :
         {"", " ", "abc", "1.5", "1e2", "0x10", "- 5", "99999999999999999999"}) {
        EXPECT_EQ(wholeNumber(testing::T(refused)), std::nullopt) << refused;
    }
}

}  // namespace
}  // namespace lorekeep::editor
