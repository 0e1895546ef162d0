#include <gtest/gtest.h>

#include "editor/text_edits.hpp"
#include "editor/texts.hpp"
#include "markup/renderer.hpp"
#include "support/fakes.hpp"
#include "support/test_support.hpp"

namespace lorekeep::editor {
namespace {

using testing::FakeWindow;
using testing::RecordingMessageBox;
using testing::T;

// Editor `box` holding `text` with the caret at `caret`.
void prepare(FakeWindow& w, int box, TextView text, std::size_t caret) {
    w.boxes[box].replaceText(text);
    w.boxes[box].setCaretPosition(caret);
    w.boxes[box].focused = false;
}

// A sequence of justification presses on one language (L, C, R) and the
// text and caret that must follow.
struct JustifyCase {
    const char* name;
    std::string presses;
    const char* text;
    std::size_t caret;
};

class Justification : public ::testing::TestWithParam<JustifyCase> {};

TEST_P(Justification, PressesWriteTheirMarkers) {
    const JustifyCase& c = GetParam();
    FakeWindow w;
    for (char press : c.presses) {
        press == 'L'   ? w.editor.leftJustifyClicked(0)
        : press == 'C' ? w.editor.centreClicked(0)
                       : w.editor.rightJustifyClicked(0);
        const MarkerState& s = w.editor.markerState(0);
        ASSERT_LE(s.leftJustifyOn + s.centreOn + s.rightJustifyOn, 1);
    }
    EXPECT_EQ(w.boxes[0].text, T(c.text));
    EXPECT_EQ(w.boxes[0].caret, c.caret);
    EXPECT_TRUE(w.boxes[0].focused);
    // Every marker refreshed the preview from the text as it now stands.
    EXPECT_EQ(w.boxes[4].preview, markup::renderPreview(w.boxes[0].text));
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

TEST(MarkerCommands, MarkerGoesAtTheCaretOfItsOwnLanguageOnly) {
    FakeWindow w;
    prepare(w, 2, u"Hello", 2);
    w.editor.centreClicked(0);
    w.editor.rightJustifyClicked(2);
    w.editor.colourClicked(3);
    EXPECT_EQ(w.boxes[2].text, uR"(He\n<jr>\nllo)");
    EXPECT_EQ(w.boxes[2].caret, 10u);
    EXPECT_TRUE(w.editor.markerState(0).centreOn);
    EXPECT_FALSE(w.editor.markerState(2).centreOn);
    for (int k = 0; k < 12; ++k) {
        EXPECT_EQ(w.colourBoxes[k].enabled, k / 3 == 3) << k;
    }
    EXPECT_TRUE(w.okButtons[3].enabled);
    EXPECT_FALSE(w.okButtons[0].enabled);
    EXPECT_EQ(w.boxes[3].replacements, 0);
}

// The colour entry's states, step by step: Colour ('C') or OK ('O') with
// the boxes' texts, then the flag, whether the boxes are open, the text.
struct ColourStep {
    char action;
    std::array<const char*, 3> boxes;
    bool colourOn;
    bool open;
    const char* text;
};

void runColourSteps(const std::vector<ColourStep>& steps) {
    FakeWindow w;
    prepare(w, 0, u"ab", 1);
    for (std::size_t n = 0; n < steps.size(); ++n) {
        const ColourStep& s = steps[n];
        if (s.action == 'O') {
            for (int c = 0; c < 3; ++c) {
                w.colourBoxes[c].value = T(s.boxes[c]);
            }
            w.editor.okClicked(0);
        } else {
            w.editor.colourClicked(0);
        }
        EXPECT_EQ(w.editor.markerState(0).colourOn, s.colourOn) << "step " << n;
        for (int c = 0; c < 3; ++c) {
            EXPECT_EQ(w.colourBoxes[c].enabled, s.open) << "step " << n;
        }
        EXPECT_EQ(w.okButtons[0].enabled, s.open) << "step " << n;
        EXPECT_EQ(w.boxes[0].text, T(s.text)) << "step " << n;
        if (s.action == 'O') {  // the boxes are reset, the button shows the colour
            EXPECT_EQ(w.colourBoxes[0].value + w.colourBoxes[1].value + w.colourBoxes[2].value,
                      u"000");
            EXPECT_EQ(w.colourButtons[0].background,
                      (markup::Rgb{static_cast<std::uint8_t>(*wholeNumber(T(s.boxes[0]))),
                                   static_cast<std::uint8_t>(*wholeNumber(T(s.boxes[1]))),
                                   static_cast<std::uint8_t>(*wholeNumber(T(s.boxes[2])))}));
        }
    }
    EXPECT_TRUE(w.messages.shown.empty());
}

TEST(ColourEntry, OpenApplyCloseOpen) {
    runColourSteps({
        {'C', {}, true, true, "ab"},
        {'O', {"255", "128", "0"}, true, false, R"(a\n<dc=255,128,0>\nb)"},
        {'C', {}, false, false, R"(a\n<dc=255,128,0>\n\n<dc=0,0,0>\nb)"},
        {'C', {}, true, true, R"(a\n<dc=255,128,0>\n\n<dc=0,0,0>\nb)"},
    });
}

TEST(ColourEntry, ColourTwiceWithoutOkThenOk) {
    runColourSteps({
        {'C', {}, true, true, "ab"},
        {'C', {}, false, true, R"(a\n<dc=0,0,0>\nb)"},
        {'O', {"007", " 12 ", "+5"}, false, false, R"(a\n<dc=0,0,0>\n\n<dc=007, 12 ,+5>\nb)"},
    });
}

TEST(ColourEntry, RefusedValuesChangeNothing) {
    for (const char* bad : {"256", "-1", "", "1.5"}) {
        for (int position = 0; position < 3; ++position) {
            FakeWindow w;
            prepare(w, 0, u"text", 2);
            w.editor.colourClicked(0);
            for (int c = 0; c < 3; ++c) {
                w.colourBoxes[c].value = c == position ? T(bad) : u"10";
            }
            w.editor.okClicked(0);
            EXPECT_EQ(w.messages.shown,
                      (std::vector<RecordingMessageBox::Shown>{
                          {Text(texts::kColourOutOfRange), Text(texts::kColourOutOfRangeTitle)}}))
                << bad;
            EXPECT_EQ(w.boxes[0].text, u"text");
            EXPECT_EQ(w.boxes[0].caret, 2u);
            EXPECT_EQ(w.colourBoxes[position].value, T(bad));
            EXPECT_TRUE(w.colourBoxes[position].enabled && w.okButtons[0].enabled);
            EXPECT_TRUE(w.editor.markerState(0).colourOn);
            EXPECT_FALSE(w.colourButtons[0].background);
        }
    }
}

TEST(BreakKeys, EnterIsSuppressedAndOtherCodesPass) {
    for (int box : {0, 3, 5}) {  // editors and preview panes alike
        FakeWindow w;
        prepare(w, 0, u"editor", 6);
        prepare(w, box, uR"(a\n<br>\n)", 9);
        int code = 13;
        w.editor.characterTyped(box, code);
        EXPECT_EQ(code, 0);
        EXPECT_EQ(w.boxes[box].text, uR"(a\n<p>\n)") << box;
        EXPECT_EQ(w.boxes[box].caret, 8u) << box;
        EXPECT_FALSE(w.boxes[box].focused) << "the focus is not moved";
        // A pane's own edit renders nothing and touches no editor.
        EXPECT_EQ(w.boxes[0].text, box == 0 ? uR"(a\n<p>\n)" : u"editor");
        const int replacements = w.boxes[box].replacements;
        for (int other : {10, 32, int('a'), 0, 127}) {
            int typed = other;
            w.editor.characterTyped(box, typed);
            EXPECT_EQ(typed, other);
        }
        EXPECT_EQ(w.boxes[box].replacements, replacements);
    }
}

TEST(CopyCommand, CopiesTheBodyOverTheOtherThreeInOrder) {
    FakeWindow w;
    const Text body = uR"(\n<jc>\nTitle\n<dc=255,0,0>\nRed\n<br>\nText)";
    std::vector<int> order;
    for (int i = 0; i < 4; ++i) {
        prepare(w, i, u"old", 0);
        w.titles[i].value = u"title " + Text(1, static_cast<char16_t>(u'0' + i));
        w.boxes[i].onChange = [&w, &order, i] {
            order.push_back(i);
            w.editor.textChanged(i);
        };
    }
    prepare(w, 1, body, 3);
    order.clear();
    w.editor.copyClicked(1);
    w.editor.copyClicked(1);  // twice is the same as once
    EXPECT_EQ(order, (std::vector<int>{0, 2, 3, 0, 2, 3}));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(w.boxes[i].text, body) << i;
        EXPECT_EQ(w.titles[i].value, u"title " + Text(1, static_cast<char16_t>(u'0' + i)));
        EXPECT_EQ(w.boxes[4 + i].preview, markup::renderPreview(body)) << i;
    }
    EXPECT_EQ(w.boxes[1].caret, 3u);  // the source is not touched
}

}  // namespace
}  // namespace lorekeep::editor
