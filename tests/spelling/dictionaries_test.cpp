#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "spelling/dictionaries.hpp"
#include "support/test_support.hpp"

namespace lorekeep::spelling {
namespace {

std::vector<Text> misspeltWords(Dictionaries& dictionaries, Language language, TextView text) {
    std::vector<Text> words;
    for (const WordSpan& span : dictionaries.misspelt(language, text)) {
        words.emplace_back(text.substr(span.start, span.length));
    }
    return words;
}

// Each test keeps Enchant's personal word lists in a folder of its own.
class DictionariesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        setenv("ENCHANT_CONFIG_DIR", m_folder.path().c_str(), 1);
        unsetenv("LOREKEEP_DICTIONARIES");
    }
    testing::TempDir m_folder;
};

TEST_F(DictionariesTest, FlagWhatTheLanguageDoesNotSpellThatWay) {
    Dictionaries dictionaries;
    for (const Language language : kAllLanguages) {
        ASSERT_TRUE(dictionaries.has(language)) << dictionaries.missingLine(language);
    }
    const struct {
        Language language;
        std::u16string_view text;
        std::vector<Text> misspelt;
    } cases[] = {
        {Language::French, u"Le mondde est grand.", {u"mondde"}},
        {Language::French, u"\\n<jc>\\nLe monde est grand, l'homme aussi.\\n<p>\\n", {}},
        // The same word, right in one language and wrong in another.
        {Language::German, u"Die Welt ist groß.", {}},
        {Language::French, u"Die Welt", {u"Welt"}},
        {Language::Italian, u"Il mondo dell'anno", {}},
        {Language::English, u"The world, don’t it?", {}},
        {Language::English, u"The wrold", {u"wrold"}},
        // Markers, separators, numbers and tags are never words.
        {Language::English, u"\\n<dc=255,0,0>\\nRed\\n<font=Xyzzy Qwrt>\\n 1234 3rd <qwrtz>", {}},
        // A full stop belongs to an abbreviation; hyphenated parts count one by one.
        {Language::German, u"Äpfel, Birnen usw. und z.B. mehr", {}},
        {Language::English, u"a well-known word-wrold", {u"word-wrold"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(misspeltWords(dictionaries, c.language, c.text), c.misspelt) << toUtf8(c.text);
    }
    const std::vector<Text> offered = dictionaries.suggestions(Language::French, u"mondde", 7);
    ASSERT_FALSE(offered.empty());
    EXPECT_LE(offered.size(), 7u);
    EXPECT_EQ(offered.front(), u"monde");
}

TEST_F(DictionariesTest, KeepAddedWordsForGoodAndIgnoredOnesForTheRun) {
    {
        Dictionaries dictionaries;
        EXPECT_FALSE(dictionaries.isCorrect(Language::French, u"Zorbaxe"));
        EXPECT_FALSE(dictionaries.isCorrect(Language::French, u"ZORBAXE"));
        dictionaries.addToPersonal(Language::French, u"Zorbaxe");
        dictionaries.ignoreAll(Language::French, u"Quuxelle");
        EXPECT_TRUE(dictionaries.isCorrect(Language::French, u"Zorbaxe"));
        EXPECT_TRUE(dictionaries.isCorrect(Language::French, u"ZORBAXE")) << "as the dictionary takes it";
        EXPECT_TRUE(dictionaries.isCorrect(Language::French, u"Quuxelle"));
        EXPECT_FALSE(dictionaries.isCorrect(Language::German, u"Zorbaxe"));
    }
    Dictionaries restarted;
    EXPECT_TRUE(restarted.isCorrect(Language::French, u"Zorbaxe"));
    EXPECT_FALSE(restarted.isCorrect(Language::French, u"Quuxelle"));
}

TEST_F(DictionariesTest, LeaveALanguageWithoutItsDictionaryUnchecked) {
    setenv("LOREKEEP_DICTIONARIES", "fr=xx_NOWHERE,fr=fr_CA,de=xx_NOWHERE", 1);
    Dictionaries dictionaries;
    EXPECT_EQ(dictionaries.nameOf(Language::French), "fr_CA");
    EXPECT_EQ(dictionaries.nameOf(Language::Italian), "it_IT");
    EXPECT_FALSE(dictionaries.has(Language::German));
    EXPECT_TRUE(dictionaries.misspelt(Language::German, u"mondde xyzzy").empty());
    EXPECT_TRUE(dictionaries.suggestions(Language::German, u"mondde", 7).empty());
    EXPECT_EQ(dictionaries.missingLine(Language::German),
              "no German spelling dictionary (xx_NOWHERE is not installed): German is not checked");
    setenv("LOREKEEP_DICTIONARIES", "", 1);

    const Language englishOnly[] = {Language::English};
    Dictionaries english(englishOnly);
    EXPECT_FALSE(english.has(Language::French));
    EXPECT_TRUE(english.isCorrect(Language::French, u"mondde"));
    EXPECT_EQ(english.missingLine(Language::French),
              "no French spelling dictionary (fr_FR is not installed): French is not checked");
}

TEST(DictionaryCandidates, FollowOverridesThenTheLocale) {
    using V = std::vector<std::string>;
    EXPECT_EQ(dictionaryCandidates(Language::English, "de_DE.UTF-8", ""), V{"en_US"});
    EXPECT_EQ(dictionaryCandidates(Language::English, "en_GB.UTF-8", ""), (V{"en_GB", "en_US"}));
    EXPECT_EQ(dictionaryCandidates(Language::French, "en_GB", "fr=fr_CA,en=en_AU,fr=fr_BE,fr="),
              (V{"fr_CA", "fr_BE"}));
    EXPECT_EQ(dictionaryCandidates(Language::English, "en_GB", "fr=fr_CA,en=en_AU"), V{"en_AU"});
    EXPECT_EQ(dictionaryCandidates(Language::Italian, "", "it"), V{"it_IT"});
}

}  // namespace
}  // namespace lorekeep::spelling
