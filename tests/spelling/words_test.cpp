#include <gtest/gtest.h>

#include <random>

#include "spelling/words.hpp"
#include "support/marker_soup.hpp"

namespace lorekeep::spelling {
namespace {

std::vector<Text> wordsOf(TextView text) {
    std::vector<Text> words;
    for (const WordSpan& span : wordsIn(text)) {
        words.emplace_back(text.substr(span.start, span.length));
    }
    return words;
}

TEST(Words, AreWhatAModderReadsBetweenTheMarkup) {
    const struct {
        std::u16string_view text;
        std::vector<Text> words;
    } cases[] = {
        {u"Hello world", {u"Hello", u"world"}},
        {u"\\nHello\\nworld\\n", {u"Hello", u"world"}},
        {u"end\\n<jc>\\nBonjour\\n<br>\\n", {u"end", u"Bonjour"}},
        {u"\\n<dc=255,128,0>\\nrouge\\n<dc=0,0,0>\\n", {u"rouge"}},
        {u"\\n<font=Times New Roman>\\nTitel", {u"Titel"}},
        {u"\\n<title=Ein Turm>\\nText", {u"Text"}},
        {u"\\n<unknown tag>\\nword", {u"word"}},
        {u"a <b>bold</b> move", {u"a", u"bold", u"move"}},
        {u"1 < 2 and 3 > 2 or", {u"or"}},  // "< 2 and 3 >" reads as a tag
        {u"42 3rd 1er 2nd3 x1 année", {u"année"}},
        {u"l'homme aujourd’hui dell'anno peut-être",
         {u"l'homme", u"aujourd’hui", u"dell'anno", u"peut-être"}},
        {u"'quoted' -dash- trailing' end-", {u"quoted", u"dash", u"trailing", u"end"}},
        {u"Straße, Œuvre; naïve. Ça", {u"Straße", u"Œuvre", u"naïve", u"Ça"}},
        {u"C:\\Games\\nSave", {u"C", u"Games", u"Save"}},
        // As written: an unclosed \\n<jl is no marker here, though the preview eats it.
        {u"\\n<dc=1,2,3>\\nno\\n<jl", {u"no", u"jl"}},
        {u"\\n<dc=255,0,0>Hidden\\n<dc=0,0,0>\\n", {u"Hidden"}},
        {u"e\u0301te\u0301 \U0001F600x", {u"e\u0301te\u0301", u"x"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(wordsOf(c.text), c.words) << toUtf8(c.text);
    }
}

TEST(Words, AreNeverTooLongForADictionary) {
    const Text run(kLongestWord + 1, u'a');
    EXPECT_TRUE(wordsIn(run).empty());
    EXPECT_EQ(wordsIn(run.substr(1)).size(), 1u);
}

// A caller may check a stretch with only kWordContext of text around it
// (a block of the editor): it must find exactly the words that a reading
// of the whole text finds there.
TEST(Words, InAStretchAreThoseOfTheWholeText) {
    testing::MarkerSoup soup(2026);
    std::mt19937 random(7);
    // Colour markers without their closing separator, one after another:
    // the preview hides what lies between them, marker to marker.
    const std::u16string_view rainbow[] = {u"\\n<dc=255,0,0>Hello ", u"\\n<dc=0,255,0>brave",
                                           u"\\n<dc=0,0,255>new world", u"\\n<jc>\\n"};
    for (int n = 0; n < 3000; ++n) {
        Text text = soup.next(600);
        if (n % 3 == 0) {
            text.insert(random() % (text.size() + 1), Text(random() % 90, u'x'));
        }
        for (int k = n % 3 == 1 ? 40 : 0; k > 0; --k) {
            text += rainbow[random() % 4];
        }
        const std::vector<WordSpan> whole = wordsIn(text);
        const std::size_t from = random() % (text.size() + 1);
        const std::size_t to = from + random() % (text.size() + 1 - from);
        const std::size_t first = from > kWordContext ? from - kWordContext : 0;
        const TextView window = TextView(text).substr(first, to + kWordContext - first);
        std::vector<WordSpan> expected;
        for (const WordSpan& span : whole) {
            if (span.start >= from && span.start < to) {
                expected.push_back({span.start - first, span.length});
            }
        }
        ASSERT_EQ(wordsIn(window, from - first, to - first), expected) << toUtf8(text);
    }
}

}  // namespace
}  // namespace lorekeep::spelling
