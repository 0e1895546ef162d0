#include "editor/find_replace.hpp"

#include <gtest/gtest.h>

#include <functional>

#include "editor/texts.hpp"
#include "markup/renderer.hpp"
#include "support/fakes.hpp"

namespace lorekeep::editor {
namespace {

using testing::FakeWindow;

struct Fixture {
    explicit Fixture(std::array<TextView, kLanguageCount> bodies,
                     std::array<TextView, kLanguageCount> titles = {}) {
        for (const Language language : kAllLanguages) {
            w.body(language).replaceText(bodies[indexOf(language)]);
            w.titles[indexOf(language)].value = Text(titles[indexOf(language)]);
        }
    }
    // Where the window shows a selection: the language shown, the box, and the range.
    struct Shown {
        Language language;
        bool title;
        std::size_t start, length;
        bool operator==(const Shown&) const = default;
    };
    Shown shown() {
        const Language language = w.pages.shown;
        const testing::FakeControl& title = w.titles[indexOf(language)];
        if (title.focused && title.selection.second > title.selection.first) {
            return {language, true, title.selection.first,
                    title.selection.second - title.selection.first};
        }
        return {language, false, w.body(language).caret, w.body(language).selected};
    }
    // The caret moves from the title to the body as a click would.
    void focusBody(Language language, std::size_t caret) {
        w.pages.shown = language;
        w.pages.inTitle = false;
        w.titles[indexOf(language)].focused = false;
        w.body(language).setCaretPosition(caret);
    }

    FakeWindow w;
    FindReplace find{w.controls()};
};

// A request for `needle`, changed by `change`.
FindRequest lookFor(TextView needle, TextView replacement = {},
                    const std::function<void(FindRequest&)>& change = {}) {
    FindRequest request;
    request.needle = Text(needle);
    request.replacement = Text(replacement);
    if (change) {
        change(request);
    }
    return request;
}

constexpr Language En = Language::English, Fr = Language::French, De = Language::German,
                   It = Language::Italian;

TEST(FindReplace, FindsThroughTheLanguagesInTabOrderAndWrapsAround) {
    Fixture f({u"cat, cat", u"chat", u"a cat", u"Cat"});
    FindRequest request = lookFor(u"cat");
    struct Step {
        bool forwards;
        Fixture::Shown shown;
        const char16_t* message;
        bool wrapped;
    };
    const std::vector<Step> steps{
        {true, {En, false, 0, 3}, u"1 of 4", false},  {true, {En, false, 5, 3}, u"2 of 4", false},
        {true, {De, false, 2, 3}, u"3 of 4", false},  // French has none ("chat" holds "hat")
        {true, {It, false, 0, 3}, u"4 of 4", false},  // either case
        {true, {En, false, 0, 3}, u"1 of 4", true},   {false, {It, false, 0, 3}, u"4 of 4", true},
        {false, {De, false, 2, 3}, u"3 of 4", false}, {false, {En, false, 5, 3}, u"2 of 4", false},
    };
    for (std::size_t n = 0; n < steps.size(); ++n) {
        const FindStatus status =
            steps[n].forwards ? f.find.findNext(request) : f.find.findPrevious(request);
        EXPECT_EQ(f.shown(), steps[n].shown) << "step " << n;
        EXPECT_EQ(status.message, steps[n].message) << "step " << n;
        EXPECT_EQ(status.wrapped, steps[n].wrapped) << "step " << n;
        EXPECT_TRUE(f.w.body(f.w.pages.shown).focused) << "step " << n;
    }
}

TEST(FindReplace, StartsAtTheCaretOfTheLanguageShown) {
    Fixture f({u"cat", u"", u"cat cat", u""});
    const FindRequest request = lookFor(u"cat");
    f.focusBody(De, 1);  // inside the first German match
    f.find.findNext(request);
    EXPECT_EQ(f.shown(), (Fixture::Shown{De, false, 4, 3}));
    f.focusBody(De, 2);
    EXPECT_EQ(f.find.findPrevious(request).message, u"1 of 3");
    EXPECT_EQ(f.shown(), (Fixture::Shown{En, false, 0, 3}));
}

TEST(FindReplace, OptionsAndScopeChooseWhatIsFound) {
    struct Case {
        const char* what;
        FindRequest request;
        Language shown;
        const char16_t* message;
    };
    using R = FindRequest&;
    const std::vector<Case> cases{
        {"case ignored", lookFor(u"CAT"), En, u"1 of 3"},
        {"case matched", lookFor(u"Cat", {}, [](R r) { r.options.matchCase = true; }), En,
         u"1 of 1"},
        {"whole words", lookFor(u"cat", {}, [](R r) { r.options.wholeWords = true; }), En,
         u"1 of 2"},
        {"this language", lookFor(u"cat", {}, [](R r) { r.allLanguages = false; }), De, u"1 of 1"},
        {"titles too", lookFor(u"cat", {}, [](R r) { r.titlesToo = true; }), En, u"1 of 5"},
        {"markers skipped", lookFor(u"jc"), En, u"1 of 1"},
        {"markers searched", lookFor(u"jc", {}, [](R r) { r.options.skipMarkers = false; }), En,
         u"1 of 2"},
        {"nothing", lookFor(u"dog"), En, u"No matches"},
    };
    for (const Case& c : cases) {
        Fixture f({u"cats \\n<jc>\\n jc", u"", u"a cat", u"Cat"}, {u"", u"", u"cat", u"scat"});
        f.w.pages.shown = c.shown;
        EXPECT_EQ(f.find.findNext(c.request).message, c.message) << c.what;
    }
}

TEST(FindReplace, TitlesComeBeforeTheirBodyAndTheCaretMayStandInOne) {
    Fixture f({u"cat", u"cat", u"", u""}, {u"", u"a cat", u"", u""});
    FindRequest request = lookFor(u"cat", {}, [](FindRequest& r) { r.titlesToo = true; });
    f.find.findNext(request);
    f.find.findNext(request);
    EXPECT_EQ(f.shown(), (Fixture::Shown{Fr, true, 2, 3}));
    EXPECT_TRUE(f.w.titles[1].focused);
    f.w.pages.inTitle = true;
    EXPECT_EQ(f.find.findNext(request).message, u"3 of 3");
    EXPECT_EQ(f.w.body(Fr).caret, 0u);
    EXPECT_EQ(f.w.body(Fr).selected, 3u);
    // Without titles, a caret in a title stands before its body.
    f.w.pages.inTitle = true;
    f.w.titles[1].select(5, 0);
    request.titlesToo = false;
    EXPECT_EQ(f.find.findNext(request).message, u"2 of 2");
}

TEST(FindReplace, ReplaceChangesTheSelectedMatchThenFindsTheNext) {
    Fixture f({u"Tom met Tom", u"", u"Tom", u""});
    const FindRequest request = lookFor(u"tom", u"Tim");
    // No match selected yet: Replace only finds.
    EXPECT_EQ(f.find.replace(request).message, u"1 of 3");
    EXPECT_EQ(f.w.body(En).text, u"Tom met Tom");
    EXPECT_EQ(f.find.replace(request).message, u"1 of 2");
    EXPECT_EQ(f.w.body(En).text, u"Tim met Tom");
    EXPECT_EQ(f.w.body(En).replacements, 2);  // the text set up, then one splice
    EXPECT_EQ(f.shown(), (Fixture::Shown{En, false, 8, 3}));
    f.find.replace(request);
    f.find.replace(request);
    EXPECT_EQ(f.w.body(De).text, u"Tim");
    EXPECT_EQ(f.find.replace(request).message, u"No matches");
    // The previews followed each change.
    EXPECT_EQ(f.w.pane(En).preview->text, markup::renderPreview(u"Tim met Tim").text);
}

TEST(FindReplace, ReplaceAllMakesOneSpliceInEachBoxItChanges) {
    Fixture f({u"red, red and red", u"rouge", u"red", u"red"}, {u"red", u"", u"", u""});
    f.focusBody(En, 9);  // on "and"
    const FindRequest request =
        lookFor(u"red", u"scarlet", [](FindRequest& r) { r.titlesToo = true; });
    EXPECT_EQ(f.find.replaceAll(request).message, u"6 replaced in 3 languages");
    EXPECT_EQ(f.w.body(En).text, u"scarlet, scarlet and scarlet");
    EXPECT_EQ(f.w.body(En).caret, 17u);  // still on "and"
    EXPECT_EQ(f.w.titles[0].value, u"scarlet");
    for (const Language language : kAllLanguages) {
        const FakeWindow& w = f.w;
        EXPECT_EQ(w.boxes[indexOf(language)].replacements, language == Fr ? 1 : 2);
        EXPECT_EQ(w.boxes[kLanguageCount + indexOf(language)].preview->text,
                  markup::renderPreview(w.boxes[indexOf(language)].text).text);
    }
    EXPECT_EQ(f.find.replaceAll(request).message, u"No matches");
    EXPECT_EQ(f.find.replaceAll(lookFor(u"rouge", u"x")).message, u"1 replaced in 1 language");
}

TEST(FindReplace, NeverGrowsABodyBeyondItsLimit) {
    Text full(kMaxBodyLength - 1, u'a');
    full.append(u"b");
    Fixture f({u"b", u"", full, u""});
    const FindRequest request = lookFor(u"b", u"bb");
    EXPECT_EQ(f.find.replaceAll(request).message, texts::kReplaceTooLong);
    EXPECT_EQ(f.w.body(En).text, u"b");  // nothing changes, not even where it fits
    EXPECT_EQ(f.w.body(De).beeps, 1);
    f.focusBody(De, kMaxBodyLength - 1);
    f.find.findNext(request);
    f.find.replace(request);
    EXPECT_EQ(f.w.body(De).text.size(), kMaxBodyLength);
    EXPECT_EQ(f.w.body(De).beeps, 2);
    // Many matches times a long replacement: refused before anything is built.
    f.w.body(En).replaceText(Text(1000, u'b'));
    EXPECT_EQ(f.find.replaceAll(lookFor(u"b", Text(32'767, u'x'))).message, texts::kReplaceTooLong);
    EXPECT_EQ(f.w.body(En).text, Text(1000, u'b'));
}

}  // namespace
}  // namespace lorekeep::editor
