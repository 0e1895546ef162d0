#include <gtest/gtest.h>

#include "document/messages.hpp"
#include "markup/markers.hpp"
#include "markup/mod_schema_parse.hpp"
#include "support/fake_window.hpp"
#include "support/test_text.hpp"

namespace lorekeep {
namespace {

using testing::FakeWindow;
using testing::RecordingMessageBox;
using testing::T;

// The window with editor `i` holding `text`, the caret at `caret`.
void Prepare(FakeWindow& w, int i, TextView text, std::size_t caret) {
    w.rtbText[i].SetPlainText(text);
    w.rtbText[i].SetCaret(caret);
    w.rtbText[i].focused = false;
}

// Justification: each case is a sequence of presses on one language, with
// the text and caret that must follow.
struct JustifyCase {
    const char* name;
    std::string presses;  // L, C, R
    const char* text;
    std::size_t caret;
};

class Justification : public ::testing::TestWithParam<JustifyCase> {};

TEST_P(Justification, PressesWriteTheirMarkers) {
    const auto& c = GetParam();
    FakeWindow w;
    for (char press : c.presses) {
        switch (press) {
            case 'L':
                w.commands.cmdLeftJus_Click(0);
                break;
            case 'C':
                w.commands.cmdCent_Click(0);
                break;
            case 'R':
                w.commands.cmdRightJus_Click(0);
                break;
        }
        const int set = w.commands.LeftJusOn[0] + w.commands.CentOn[0] + w.commands.RightJusOn[0];
        ASSERT_LE(set, 1) << "at most one justification flag";
    }
    EXPECT_EQ(w.rtbText[0].PlainText(), T(c.text));
    EXPECT_EQ(w.rtbText[0].Caret(), c.caret);
}

INSTANTIATE_TEST_SUITE_P(
    Sequences, Justification,
    ::testing::Values(JustifyCase{"CenterOnce", "C", R"(\n<jc>\n)", 8},
                      JustifyCase{"CenterTwice", "CC", R"(\n<jc>\n)", 8},
                      JustifyCase{"CenterThrice", "CCC", R"(\n<jc>\n\n<jc>\n)", 16},
                      JustifyCase{"LeftCenterLeft", "LCL", R"(\n<jl>\n\n<jc>\n\n<jl>\n)", 24},
                      JustifyCase{"RightLeftRight", "RLR", R"(\n<jr>\n\n<jl>\n\n<jr>\n)", 24},
                      JustifyCase{"LeftLeftRight", "LLR", R"(\n<jl>\n\n<jr>\n)", 16}),
    [](const auto& tc) { return std::string(tc.param.name); });

TEST(MarkerCommands, CenterOnAnEmptyEditorFocusesIt) {
    FakeWindow w;
    w.commands.cmdCent_Click(0);
    EXPECT_EQ(w.rtbText[0].PlainText(), uR"(\n<jc>\n)");
    EXPECT_EQ(w.rtbText[0].Caret(), 8u);
    EXPECT_TRUE(w.rtbText[0].focused);
    EXPECT_EQ(w.rtbText[4].PlainText(), u"");  // the preview follows: nothing left to show
    EXPECT_TRUE(w.commands.CentOn[0]);
}

TEST(MarkerCommands, MarkerGoesAtTheCaretOrInFrontOfTheSelection) {
    FakeWindow w;
    Prepare(w, 2, u"Hello", 0);
    w.commands.cmdRightJus_Click(2);
    EXPECT_EQ(w.rtbText[2].PlainText(), uR"(\n<jr>\nHello)");
    EXPECT_EQ(w.rtbText[2].Caret(), 8u);

    w.rtbText[3].SetPlainText(u"abcdef");
    w.rtbText[3].model.SelectToEnd(2);  // "cdef" selected
    w.commands.cmdLeftJus_Click(3);
    EXPECT_EQ(w.rtbText[3].PlainText(), uR"(ab\n<jl>\ncdef)");
    EXPECT_EQ(w.rtbText[3].Caret(), 10u);
    EXPECT_EQ(w.rtbText[3].model.selectionLength(), 0u);
}

TEST(MarkerCommands, LanguagesKeepTheirOwnState) {
    FakeWindow w;
    w.commands.cmdCent_Click(0);
    w.commands.cmdLeftJus_Click(1);
    w.commands.cmdColor_Click(2);
    EXPECT_TRUE(w.commands.CentOn[0]);
    EXPECT_TRUE(w.commands.LeftJusOn[1]);
    EXPECT_FALSE(w.commands.CentOn[1]);
    for (int k = 0; k < 12; ++k) {
        EXPECT_EQ(w.txtColor[k].enabled, k / 3 == 2) << k;
    }
    EXPECT_TRUE(w.cmdOK[2].enabled);
    EXPECT_FALSE(w.cmdOK[0].enabled);
    EXPECT_EQ(w.rtbText[2].PlainText(), u"");
}

// The colour entry's four states, step by step.
struct ColourStep {
    char action;  // 'C' Colour, 'O' OK
    const char* red;
    const char* green;
    const char* blue;
    bool colorOn;
    bool boxesEnabled;
    const char* textAfter;
    bool message;
};

void RunColourSteps(const std::vector<ColourStep>& steps) {
    FakeWindow w;
    for (std::size_t n = 0; n < steps.size(); ++n) {
        const ColourStep& s = steps[n];
        if (s.action == 'O') {
            w.txtColor[0].text = T(s.red);
            w.txtColor[1].text = T(s.green);
            w.txtColor[2].text = T(s.blue);
            w.commands.cmdOK_Click(0);
        } else {
            w.commands.cmdColor_Click(0);
        }
        EXPECT_EQ(w.commands.ColorOn[0], s.colorOn) << "step " << n;
        for (int k = 0; k < 3; ++k) {
            EXPECT_EQ(w.txtColor[k].enabled, s.boxesEnabled) << "step " << n;
        }
        EXPECT_EQ(w.cmdOK[0].enabled, s.boxesEnabled) << "step " << n;
        EXPECT_EQ(w.rtbText[0].PlainText(), T(s.textAfter)) << "step " << n;
        EXPECT_EQ(w.messages.shown.size(), s.message ? 1u : 0u) << "step " << n;
        w.messages.shown.clear();
    }
}

TEST(ColourEntry, OpenApplyCloseOpen) {
    RunColourSteps({
        {'C', "", "", "", true, true, "", false},                                       // A to B
        {'O', "255", "128", "0", true, false, R"(\n<dc=255,128,0>\n)", false},          // B to C
        {'C', "", "", "", false, false, R"(\n<dc=255,128,0>\n\n<dc=0,0,0>\n)", false},  // C to A
        {'C', "", "", "", true, true, R"(\n<dc=255,128,0>\n\n<dc=0,0,0>\n)", false},    // A to B
    });
}

TEST(ColourEntry, ColourTwiceWithoutOkThenOk) {
    RunColourSteps({
        {'C', "", "", "", true, true, "", false},                                      // A to B
        {'C', "", "", "", false, true, R"(\n<dc=0,0,0>\n)", false},                    // B to D
        {'O', "1", "2", "3", false, false, R"(\n<dc=0,0,0>\n\n<dc=1,2,3>\n)", false},  // D to A
    });
}

TEST(ColourEntry, OkWritesTheMarkerAsTypedAndResetsTheBoxes) {
    FakeWindow w;
    Prepare(w, 0, u"ab", 1);
    w.commands.cmdColor_Click(0);
    w.txtColor[0].text = u"255";
    w.txtColor[1].text = u"128";
    w.txtColor[2].text = u"0";
    w.commands.cmdOK_Click(0);
    EXPECT_EQ(w.rtbText[0].PlainText(), uR"(a\n<dc=255,128,0>\nb)");
    EXPECT_EQ(markup::ColourMarker(u"255", u"128", u"0").size(), 18u);
    EXPECT_EQ(w.rtbText[0].Caret(), 19u);
    EXPECT_TRUE(w.rtbText[0].focused);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(w.txtColor[k].text, u"0");
        EXPECT_FALSE(w.txtColor[k].enabled);
    }
    EXPECT_FALSE(w.cmdOK[0].enabled);
    ASSERT_TRUE(w.cmdColor[0].backColour);
    EXPECT_EQ(*w.cmdColor[0].backColour, (markup::Rgb{255, 128, 0}));
    // The next Colour press closes: the black marker directly behind, 14 further.
    w.commands.cmdColor_Click(0);
    EXPECT_EQ(w.rtbText[0].PlainText(), uR"(a\n<dc=255,128,0>\n\n<dc=0,0,0>\nb)");
    EXPECT_EQ(w.rtbText[0].Caret(), 33u);
}

TEST(ColourEntry, AcceptedTextsGoInExactlyAsTyped) {
    const std::pair<std::array<const char*, 3>, const char*> cases[] = {
        {{"007", "0", "255"}, R"(\n<dc=007,0,255>\n)"},
        {{" 12 ", "+5", "-0"}, R"(\n<dc= 12 ,+5,-0>\n)"},
    };
    for (const auto& [boxes, marker] : cases) {
        FakeWindow w;
        w.commands.cmdColor_Click(1);
        for (int c = 0; c < 3; ++c) {
            w.txtColor[3 + c].text = T(boxes[c]);
        }
        w.commands.cmdOK_Click(1);
        EXPECT_TRUE(w.messages.shown.empty()) << marker;
        EXPECT_EQ(w.rtbText[1].PlainText(), T(marker));
    }
}

TEST(ColourEntry, RefusedValuesChangeNothing) {
    for (const char* bad :
         {"256", "-1", "", "abc", "1.5", "1e2", "0x10", "99999999999999999999999", " ", "- 5"}) {
        for (int position = 0; position < 3; ++position) {
            FakeWindow w;
            Prepare(w, 0, u"text", 2);
            w.commands.cmdColor_Click(0);
            for (int c = 0; c < 3; ++c) {
                w.txtColor[c].text = c == position ? T(bad) : u"10";
            }
            w.commands.cmdOK_Click(0);
            EXPECT_EQ(w.messages.shown,
                      (std::vector<RecordingMessageBox::Shown>{
                          {Text(texts::kColourOutOfRange), Text(texts::kColourOutOfRangeTitle)}}))
                << bad;
            EXPECT_EQ(w.rtbText[0].PlainText(), u"text");
            EXPECT_EQ(w.rtbText[0].Caret(), 2u);
            EXPECT_EQ(w.txtColor[position].text, T(bad));
            EXPECT_TRUE(w.txtColor[position].enabled);
            EXPECT_TRUE(w.cmdOK[0].enabled);
            EXPECT_TRUE(w.commands.ColorOn[0]);
            EXPECT_FALSE(w.cmdColor[0].backColour);
        }
    }
}

// Break keys: one Enter on a text and caret, with the text and caret after.
struct BreakCase {
    const char* name;
    Text text;
    std::size_t caret;
    Text after;
    std::size_t caretAfter;
};

class BreakKey : public ::testing::TestWithParam<BreakCase> {};

TEST_P(BreakKey, EnterWritesTheRightMarker) {
    const auto& c = GetParam();
    for (int box : {0, 3, 5}) {  // editors and preview panes alike
        FakeWindow w;
        Prepare(w, box, c.text, c.caret);
        int code = 13;
        w.commands.rtbText_KeyPress(box, code);
        EXPECT_EQ(code, 0);
        EXPECT_EQ(w.rtbText[box].PlainText(), c.after) << "box " << box;
        EXPECT_EQ(w.rtbText[box].Caret(), c.caretAfter) << "box " << box;
        EXPECT_FALSE(w.rtbText[box].focused) << "the focus is not moved";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BreakKey,
    ::testing::Values(
        BreakCase{"EmptyEditor", u"", 0, uR"(\n<br>\n)", 8},
        BreakCase{"SevenLettersAtTheEnd", u"abcdefg", 7, uR"(abcdefg\n<br>\n)", 15},
        BreakCase{"ParagraphAlone", uR"(\n<p>\n)", 7, uR"(\n<pb>\n)", 8},
        BreakCase{"LineBreakBeforeALetter", uR"(a\n<br>\nb)", 9, uR"(a\n<p>\nb)", 9},
        BreakCase{"PageBreakBeforeALetter", uR"(a\n<pb>\nb)", 9, uR"(a\n<pb>\n\n<br>\nb)", 17},
        BreakCase{"CaretInsideAppendsAtTheEnd", u"hello world", 5, uR"(hello world\n<br>\n)", 13},
        BreakCase{"MarkerFollowedByASpace", uR"(\n<br>\n )", 9, uR"(\n<br>\n \n<br>\n)", 17},
        BreakCase{"CapitalsAreNotAMarker", uR"(\n<BR>\n)", 8, uR"(\n<BR>\n\n<br>\n)", 16},
        BreakCase{"CaretAtTheStartOfAMarker", uR"(\n<br>\n)", 0, uR"(\n<br>\n\n<br>\n)", 8}),
    [](const auto& tc) { return std::string(tc.param.name); });

TEST(BreakKeys, FiveEntersAtTheEndCycle) {
    FakeWindow w;
    const Text expected[] = {uR"(x\n<br>\n)", uR"(x\n<p>\n)", uR"(x\n<pb>\n)",
                             uR"(x\n<pb>\n\n<br>\n)", uR"(x\n<pb>\n\n<p>\n)"};
    Prepare(w, 0, u"x", 1);
    for (const Text& text : expected) {
        int code = 13;
        w.commands.rtbText_KeyPress(0, code);
        EXPECT_EQ(w.rtbText[0].PlainText(), text);
        EXPECT_EQ(w.rtbText[0].Caret(), text.size());
    }
    // No real line break ever entered the body.
    EXPECT_EQ(w.rtbText[0].PlainText().find_first_of(u"\r\n"), Text::npos);
}

TEST(BreakKeys, OtherCodesPassUnchanged) {
    for (int code : {10, 32, int('a'), 0, 9, 127}) {
        FakeWindow w;
        Prepare(w, 0, u"abc", 3);
        int typed = code;
        w.commands.rtbText_KeyPress(0, typed);
        EXPECT_EQ(typed, code);
        EXPECT_EQ(w.rtbText[0].PlainText(), u"abc");
        EXPECT_EQ(w.rtbText[0].replacements, 1);
    }
}

TEST(BreakKeys, EnterInAPreviewPaneChangesOnlyThatPane) {
    FakeWindow w;
    w.rtbText[0].SetPlainText(u"editor");
    Prepare(w, 4, u"pane", 4);
    int code = 13;
    w.commands.rtbText_KeyPress(4, code);
    EXPECT_EQ(w.rtbText[4].PlainText(), uR"(pane\n<br>\n)");
    EXPECT_EQ(w.rtbText[0].PlainText(), u"editor");
}

TEST(CopyCommand, CopiesTheBodyOverTheOtherThreeInOrder) {
    FakeWindow w;
    const Text body = uR"(\n<jc>\nTitle\n<dc=255,0,0>\nRed\n<br>\nText)";
    std::vector<int> order;
    for (int i = 0; i < 4; ++i) {
        w.rtbText[i].SetPlainText(u"old " + Text(1, static_cast<char16_t>(u'0' + i)));
        w.txtTitle[i].text = u"title " + Text(1, static_cast<char16_t>(u'0' + i));
        w.rtbText[i].onChange = [&w, &order, i] {
            order.push_back(i);
            w.commands.rtbText_Change(i);
        };
    }
    Prepare(w, 1, body, 3);
    order.clear();
    w.commands.cmdCopy_Click(1);
    w.commands.cmdCopy_Click(1);  // twice is the same as once
    EXPECT_EQ(order, (std::vector<int>{0, 2, 3, 0, 2, 3}));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(w.rtbText[i].PlainText(), body) << i;
        EXPECT_EQ(w.txtTitle[i].text, u"title " + Text(1, static_cast<char16_t>(u'0' + i)));
        EXPECT_EQ(w.rtbText[4 + i].model.Snapshot(), modSchemaParse::RenderPreview(body)) << i;
    }
    EXPECT_EQ(w.rtbText[1].Caret(), 3u);  // the source is not touched
}

}  // namespace
}  // namespace lorekeep
