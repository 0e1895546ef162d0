#include <gtest/gtest.h>

#include <random>

#include "search/find.hpp"
#include "support/marker_soup.hpp"

namespace lorekeep::search {
namespace {

std::vector<std::size_t> startsOf(TextView text, TextView needle, const FindOptions& options) {
    std::vector<std::size_t> starts;
    for (const Match& match : findAll(text, needle, options)) {
        EXPECT_EQ(match.length, needle.size());
        starts.push_back(match.start);
    }
    return starts;
}

TEST(Find, FollowsTheOptions) {
    const FindOptions plain{};
    const FindOptions cased{.matchCase = true};
    const FindOptions whole{.wholeWords = true};
    const FindOptions everywhere{.skipMarkers = false};
    using Starts = std::vector<std::size_t>;
    const struct {
        std::u16string_view text;
        std::u16string_view needle;
        FindOptions options;
        Starts starts;
    } cases[] = {
        {u"Tower tower TOWER", u"tower", plain, {0, 6, 12}},
        {u"Tower tower TOWER", u"tower", cased, {6}},
        {u"ÉCOLE école Ecole", u"école", plain, {0, 6}},
        {u"aaaa", u"aa", plain, {0, 2}},  // none overlapping
        {u"jc \\n<jc>\\n jc", u"jc", plain, {0, 12}},
        {u"jc \\n<jc>\\n jc", u"jc", everywhere, {0, 6, 12}},
        {u"\\n<br>\\n", u"\\n<br>\\n", plain, {0}},  // a whole marker is found
        {u"\\n<br>\\n", u"<br>", plain, {}},
        {u"a\\nb", u"n", plain, {}},  // never half a separator
        {u"a\\nb", u"\\n", plain, {1}},
        {u"\\n<dc=255,0,0>\\nred", u"255", plain, {}},
        {u"\\n<font=Times New Roman>\\nTimes", u"Times", plain, {26}},
        {u"cat concat cat_ cats \\ncat\\n", u"cat", whole, {0, 23}},
        {u"l'homme homme", u"homme", whole, {2, 8}},
        {u"", u"x", plain, {}},
        {u"abc", u"", plain, {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(startsOf(c.text, c.needle, c.options), c.starts)
            << toUtf8(c.text) << " / " << toUtf8(c.needle);
    }
}

// A match is found wherever it stands in a long run of ASCII, which the
// search passes over a block at a time; so is one whose first character lies
// beyond ASCII and folds to an ASCII letter (the Kelvin sign's k).
TEST(Find, FindsAMatchAnywhereInALongRun) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"DRAGON", u"dragon"},
        {u"dragon", u"Dragon"},
        {u"\u212Aelvin", u"kelvin"},
        {u"École", u"ÉCOLE"}};
    for (const auto& [written, needle] : cases) {
        for (std::size_t pad = 0; pad < 140; ++pad) {
            // Half of them after a character beyond ASCII, which the search
            // reads by itself before it goes on a block at a time.
            Text text = pad % 2 == 0 ? Text() : Text(u"ü");
            text.append(pad, u'x').append(written).append(pad % 7, u'y');
            EXPECT_EQ(startsOf(text, needle, {}), std::vector<std::size_t>{pad + pad % 2})
                << toUtf8(needle) << " after " << pad;
        }
    }
}

TEST(Find, NextAndPreviousStepThroughTheMatches) {
    const TextView text = u"one two one two one";
    const FindOptions options{};
    EXPECT_EQ(findNext(text, u"one", options, 1), (Match{8, 3}));
    EXPECT_EQ(findNext(text, u"one", options, 16), (Match{16, 3}));
    EXPECT_EQ(findNext(text, u"one", options, 17), std::nullopt);
    EXPECT_EQ(findPrevious(text, u"one", options, 16), (Match{8, 3}));
    EXPECT_EQ(findPrevious(text, u"one", options, 19), (Match{16, 3}));
    EXPECT_EQ(findPrevious(text, u"one", options, 2), std::nullopt);
    EXPECT_EQ(findPrevious(u"\\n<jc>\\n jc", u"JC", options, 100), (Match{9, 2}));
}

// Replacing leaves everything between the matches as it was, and a search
// for the replacement's own text afterwards finds each replacement.
TEST(Find, ReplacingChangesExactlyTheMatches) {
    testing::MarkerSoup soup(25);
    std::mt19937 random(25);
    const std::u16string_view needles[] = {u"jc", u"ab", u"Hello", u"\\n", u"0"};
    for (int n = 0; n < 2000; ++n) {
        const Text text = soup.next(300);
        const TextView needle = needles[random() % std::size(needles)];
        const FindOptions options{.matchCase = n % 2 == 0, .wholeWords = n % 3 == 0};
        const std::vector<Match> matches = findAll(text, needle, options);
        const Replaced replaced = replaceMatches(text, matches, u"\u2603");
        ASSERT_EQ(replaced.text.size(), lengthAfterReplacing(text.size(), matches, u"\u2603"));
        Text expected;
        std::size_t copied = 0;
        for (const Match& match : matches) {
            ASSERT_GE(match.start, copied);
            expected += text.substr(copied, match.start - copied) + u"\u2603";
            copied = match.start + match.length;
        }
        expected += text.substr(copied);
        ASSERT_EQ(replaced.text, expected) << toUtf8(text);
        if (!matches.empty()) {
            ASSERT_EQ(findPrevious(text, needle, options, text.size()), matches.back());
        }
    }
}

}  // namespace
}  // namespace lorekeep::search
