#include <gtest/gtest.h>

#include "editor/text_edits.hpp"

namespace lorekeep::editor {
namespace {

// One Enter on a text and caret, with the text and caret that must follow.
TEST(BreakKey, WritesTheRightMarker) {
    const std::tuple<Text, std::size_t, Text, std::size_t> rows[] = {
        {u"", 0, uR"(\n<br>\n)", 8},
        {u"abcdefg", 7, uR"(abcdefg\n<br>\n)", 15},
        // The caret is counted from the old one: 15 lies beyond the end.
        {uR"(\n<p>\n)", 7, uR"(\n<pb>\n)", 15},
        {uR"(a\n<br>\nb)", 9, uR"(a\n<p>\nb)", 16},
        {uR"(a\n<pb>\nb)", 9, uR"(a\n<pb>\n\n<br>\nb)", 17},
        {uR"(x\n<pb>\n\n<br>\n)", 17, uR"(x\n<pb>\n\n<p>\n)", 24},
        // Anywhere else a line break goes at the very end.
        {u"hello world", 5, uR"(hello world\n<br>\n)", 13},
        {uR"(\n<br>\n )", 9, uR"(\n<br>\n \n<br>\n)", 17},
        {uR"(\n<BR>\n)", 8, uR"(\n<BR>\n\n<br>\n)", 16},
        {uR"(\n<br>\n)", 0, uR"(\n<br>\n\n<br>\n)", 8},
        {u"ab", 99, uR"(ab\n<br>\n)", 10},
    };
    for (const auto& [text, caret, after, caretAfter] : rows) {
        EXPECT_EQ(breakKeyEdit(text, caret), (TextEdit{after, caretAfter})) << toUtf8(text);
    }
}

}  // namespace
}  // namespace lorekeep::editor
