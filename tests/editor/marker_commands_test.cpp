#include <gtest/gtest.h>

#include <map>

#include "editor/texts.hpp"
#include "markup/renderer.hpp"
#include "support/fakes.hpp"

namespace lorekeep::editor {
namespace {

using testing::FakeWindow;

// Editor `box` holding `text` with the caret at `caret`.
void prepare(FakeWindow& w, int box, TextView text, std::size_t caret) {
    w.boxes[box].replaceText(text);
    w.boxes[box].setCaretPosition(caret);
}

// A sequence of presses on one language's buttons (L, C, R: justification;
// K: Colour; O: OK with the boxes as given) and what must follow each press:
// the text, whether the colour boxes and OK are open, and the Colour flag.
struct Press {
    char button;
    const char* text;
    bool open = false;
    bool colourOn = false;
    std::array<const char*, 3> boxes{};
};

void runPresses(const std::vector<Press>& presses) {
    FakeWindow w;
    prepare(w, 2, u"ab", 1);
    for (std::size_t n = 0; n < presses.size(); ++n) {
        const Press& p = presses[n];
        const std::map<char, void (SchemaEditor::*)(Language)> buttons{
            {'L', &SchemaEditor::leftJustifyClicked},
            {'C', &SchemaEditor::centreClicked},
            {'R', &SchemaEditor::rightJustifyClicked},
            {'K', &SchemaEditor::colourClicked},
            {'O', &SchemaEditor::okClicked}};
        for (int c = 0; c < 3 && p.button == 'O'; ++c) {
            w.colourBoxes[6 + c].value = fromUtf8(p.boxes[c]);
        }
        (w.editor.*buttons.at(p.button))(Language::German);
        const MarkerState& s = w.editor.markerState(Language::German);
        EXPECT_LE(s.leftJustifyOn + s.centreOn + s.rightJustifyOn, 1) << "press " << n;
        EXPECT_EQ(s.colourOn, p.colourOn) << "press " << n;
        EXPECT_EQ(w.boxes[2].text, fromUtf8(p.text)) << "press " << n;
        for (int k = 0; k < 12; ++k) {
            EXPECT_EQ(w.colourBoxes[k].enabled, p.open && k / 3 == 2) << "press " << n;
            if (p.button == 'O') {  // OK locks the boxes again, reset to "0"
                EXPECT_EQ(w.colourBoxes[k].value, u"0") << "press " << n;
            }
        }
        EXPECT_EQ(w.okButtons[2].enabled, p.open) << "press " << n;
        EXPECT_EQ(w.boxes[2].caret, w.boxes[2].text.size() - 1) << "directly behind the marker";
        if (p.button == 'O') {  // the Colour button shows the colour
            auto value = [&](int c) { return static_cast<std::uint8_t>(std::stoi(p.boxes[c])); };
            EXPECT_EQ(w.colourButtons[2].background, (markup::Rgb{value(0), value(1), value(2)}));
        }
    }
    // A marker goes in at the caret and the focus follows it; the preview
    // follows the text. The other languages are untouched.
    EXPECT_TRUE(w.boxes[2].focused);
    EXPECT_EQ(w.boxes[6].preview, markup::renderPreview(w.boxes[2].text));
    EXPECT_EQ(w.boxes[0].replacements + w.boxes[1].replacements + w.boxes[3].replacements, 0);
    EXPECT_TRUE(w.messages.shown.empty());
}

TEST(MarkerCommands, JustificationPressesToggle) {
    runPresses({{'C', R"(a\n<jc>\nb)"}, {'C', R"(a\n<jc>\nb)"}, {'C', R"(a\n<jc>\n\n<jc>\nb)"}});
    runPresses({{'L', R"(a\n<jl>\nb)"},
                {'C', R"(a\n<jl>\n\n<jc>\nb)"},
                {'L', R"(a\n<jl>\n\n<jc>\n\n<jl>\nb)"},
                {'L', R"(a\n<jl>\n\n<jc>\n\n<jl>\nb)"},
                {'R', R"(a\n<jl>\n\n<jc>\n\n<jl>\n\n<jr>\nb)"}});
}

TEST(MarkerCommands, ColourEntryStates) {
    runPresses({{'K', "ab", true, true},
                {'O', R"(a\n<dc=255,128,0>\nb)", false, true, {"255", "128", "0"}},
                {'K', R"(a\n<dc=255,128,0>\n\n<dc=0,0,0>\nb)", false, false},
                {'K', R"(a\n<dc=255,128,0>\n\n<dc=0,0,0>\nb)", true, true}});
    // Colour twice without OK writes black and leaves the boxes open; the
    // components then go in exactly as typed.
    runPresses(
        {{'K', "ab", true, true},
         {'K', R"(a\n<dc=0,0,0>\nb)", true, false},
         {'O', R"(a\n<dc=0,0,0>\n\n<dc=007,12,0255>\nb)", false, false, {"007", "12", "0255"}}});
}

TEST(MarkerCommands, RefusedColourValuesChangeNothing) {
    // Only digits make a colour number, as only they colour the preview.
    for (const char* bad : {"256", "-1", "", "1.5", " 12", "+5", "00255"}) {
        for (int position = 0; position < 3; ++position) {
            FakeWindow w;
            prepare(w, 0, u"text", 2);
            w.editor.colourClicked(Language::English);
            for (int c = 0; c < 3; ++c) {
                w.colourBoxes[c].value = c == position ? fromUtf8(bad) : u"10";
            }
            w.editor.okClicked(Language::English);
            ASSERT_EQ(w.messages.shown.size(), 1u) << bad;
            EXPECT_EQ(w.messages.shown[0].text, texts::kColourOutOfRange);
            EXPECT_EQ(w.messages.shown[0].title, texts::kColourOutOfRangeTitle);
            EXPECT_EQ(w.boxes[0].text + w.colourBoxes[position].value, u"text" + fromUtf8(bad));
            EXPECT_EQ(w.boxes[0].caret, 2u);
            EXPECT_TRUE(w.colourBoxes[position].enabled && w.okButtons[0].enabled);
            EXPECT_FALSE(w.colourButtons[0].background);
        }
    }
}

// Enter works alike in editors and preview panes; a pane's own edit
// renders nothing and touches no editor. Every other code passes unchanged.
TEST(MarkerCommands, EnterIsSuppressedAndOtherCodesPass) {
    for (int box : {0, 5}) {
        FakeWindow w;
        prepare(w, box, uR"(a\n<br>\n)", 9);
        for (int code : {10, 32, 0, 13}) {
            const int typed = code;
            w.editor.characterTyped(Language(box % kLanguageCount),
                                    box < kLanguageCount ? Box::Body : Box::Preview, code);
            EXPECT_EQ(code, typed == 13 ? 0 : typed);
        }
        EXPECT_EQ(w.boxes[box].text, uR"(a\n<p>\n)");
        EXPECT_EQ(w.boxes[1].replacements + w.boxes[0].replacements, box == 0 ? 2 : 0);
        EXPECT_EQ(w.boxes[box].caret, 8u) << box;
        EXPECT_EQ(w.boxes[box].replacements, 2) << "one for the text, one for the Enter";
        EXPECT_FALSE(w.boxes[box].focused) << "the focus is not moved";
    }
}

// A spelling suggestion goes in as the smallest splice, in one replacement,
// and the preview follows; a word that no longer fits stays as it is.
TEST(MarkerCommands, ReplaceWordSplicesTheDifferenceOnly) {
    FakeWindow w;
    prepare(w, 1, uR"(\n<jc>\nLe mondde\n<br>\n)", 0);
    const int before = w.boxes[1].replacements;
    std::optional<TextChange> change;
    w.boxes[1].onChange = [&](const TextChange& c) {
        change = c;
        w.editor.bodyChanged(Language::French, c);
    };
    w.editor.replaceWord(Language::French, 10, u"mondde", u"mondes");
    EXPECT_EQ(w.boxes[1].beeps, 1) << "the word stands one place further on";
    w.editor.replaceWord(Language::French, 11, u"mondde", u"mondes");
    EXPECT_EQ(w.boxes[1].text, uR"(\n<jc>\nLe mondes\n<br>\n)");
    EXPECT_EQ(w.boxes[1].replacements, before + 1);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->start, 15u);  // "mond" stays
    EXPECT_EQ(change->removed, 2u);
    EXPECT_EQ(change->inserted, u"es");
    EXPECT_EQ(w.boxes[1].caret, 17u);
    ASSERT_TRUE(w.pane(Language::French).preview);
    EXPECT_EQ(*w.pane(Language::French).preview, markup::renderPreview(w.boxes[1].text));

    const Text full(kMaxBodyLength - 3, u'x');
    prepare(w, 2, full + u" ab", 0);
    w.editor.replaceWord(Language::German, kMaxBodyLength - 2, u"ab", u"abc");
    EXPECT_EQ(w.boxes[2].beeps, 1);
    EXPECT_EQ(w.boxes[2].text.size(), kMaxBodyLength);
    w.editor.replaceWord(Language::German, kMaxBodyLength, u"ab", u"a");
    EXPECT_EQ(w.boxes[2].beeps, 2) << "past the end";
    w.editor.replaceWord(Language::German, kMaxBodyLength - 2, u"ab", u"a");
    EXPECT_EQ(w.boxes[2].text.substr(kMaxBodyLength - 3), u" a");
}

}  // namespace
}  // namespace lorekeep::editor
