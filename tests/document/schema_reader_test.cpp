#include <gtest/gtest.h>

#include "document/schema_reader.hpp"
#include "support/fake_window.hpp"
#include "support/test_text.hpp"

namespace lorekeep {
namespace {

using testing::FakeFontBox;
using testing::FakeTextBox;
using testing::T;

std::vector<Text> Fields(TextView text) {
    FieldReader reader(text);
    std::vector<Text> fields;
    while (!reader.AtEnd()) {
        auto field = reader.ReadField();
        if (!field) {
            break;
        }
        fields.push_back(*field);
    }
    return fields;
}

struct FieldCase {
    const char* name;
    Text text;
    std::vector<Text> fields;
};

class FieldRules : public ::testing::TestWithParam<FieldCase> {};

TEST_P(FieldRules, SplitsAsExpected) {
    EXPECT_EQ(Fields(GetParam().text), GetParam().fields);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FieldRules,
    ::testing::Values(
        FieldCase{"CommaAndLineEnds", u"a,b\r\nc\rd\ne", {u"a", u"b", u"c", u"d", u"e"}},
        FieldCase{"LeadingSpacesSkippedTrailingKept", u"  a , b  \r\n", {u"a ", u"b  "}},
        FieldCase{"TabIsNoSpace", u"\ta", {u"\ta"}},
        FieldCase{"EmptyLinesGiveEmptyFields",
                  u"a\r\n\r\nb\r\rc\n\nd",
                  {u"a", u"", u"b", u"", u"c", u"", u"d"}},
        FieldCase{"QuotedFieldKeepsCommas", u"\"q,uo\",x", {u"q,uo", u"x"}},
        FieldCase{"AfterTheClosingQuoteIsAppended", u"\"ab\"cd,e", {u"abcd", u"e"}},
        FieldCase{
            "UnclosedQuoteEndsAtTheLineEnd", u"\"open, still\r\nnext", {u"open, still", u"next"}},
        FieldCase{"QuoteInsideAFieldIsOrdinary", u"lang_x \"body\"\r\n", {u"lang_x \"body\""}},
        FieldCase{"SpacesBeforeAQuote", u"   \"a\"", {u"a"}},
        FieldCase{"TrailingCommaAddsNothing", u"a,", {u"a"}}, FieldCase{"NothingToRead", u"", {}}),
    [](const auto& tc) { return std::string(tc.param.name); });

TEST(FieldReader, ReadingPastTheEndFails) {
    FieldReader reader(u"a");
    EXPECT_EQ(reader.ReadField(), Text(u"a"));
    EXPECT_TRUE(reader.AtEnd());
    EXPECT_EQ(reader.ReadField(), std::nullopt);
}

const Text kHeader = u"VERSION 2.0\r\nTextEntry\r\nname\r\n";

TEST(CollectRecords, RecordsByPositionWithFieldsJoined) {
    const auto records = CollectRecords(kHeader +
                                        u"lang_german one, two,  three\r\n"
                                        u"continued\r\n"
                                        u"   indented\r\n"
                                        u"lang_french x,lang_italian y\r\n"
                                        u"lang_english z\r\n"
                                        u"trailing, fields\r\n"
                                        u"\r\n");
    ASSERT_TRUE(records);
    EXPECT_EQ((*records)[0], u"lang_german onetwothreecontinuedindented");
    EXPECT_EQ((*records)[1], u"lang_french x");
    EXPECT_EQ((*records)[2], u"lang_italian y");
    EXPECT_EQ((*records)[3], u"lang_english ztrailingfields");
}

TEST(CollectRecords, FilesThatCannotBeTakenApart) {
    const std::pair<const char*, Text> cases[] = {
        {"two header fields", u"VERSION 2.0\r\nTextEntry\r\n"},
        {"comma in the schema name", u"V\r\nT\r\nna,me\r\nlang_english x\r\n"},
        {"lang_ with capitals", kHeader + u"Lang_english x\r\n"},
        {"lang_ not at the start", kHeader + u" xlang_english x\r\n"},
        {"five records", kHeader + u"lang_a\r\nlang_b\r\nlang_c\r\nlang_d\r\nlang_e\r\n"},
    };
    for (const auto& [what, text] : cases) {
        EXPECT_EQ(CollectRecords(text), std::nullopt) << what;
    }
    // Three header lines and nothing else read fine; the records are empty.
    const auto empty = CollectRecords(kHeader);
    ASSERT_TRUE(empty);
    EXPECT_EQ((*empty)[0], u"");
}

// A record as the reader's rules expect it: key, 21 characters, then what follows.
Text RulesRecord(TextView afterStamp) {
    return Text(u"lang_english ") + u"2005-03-14 14:05:09 \"" + Text(afterStamp);
}

struct BlockResult {
    std::optional<Text> body;
    Text title;
    Text font;
    int selected;
};

BlockResult Read(TextView record, int i = 0, bool writerLayout = true) {
    FakeFontBox font;
    FakeTextBox title(u"old title");
    auto body = ReadLanguageBlock(record, i, font, title, ReaderOptions{writerLayout});
    return {body, title.text, font.text, font.selected};
}

TEST(ReadLanguageBlock, TheRulesLayoutInFull) {
    const auto r = Read(RulesRecord(u"<font=papyrus14><title=The Tower>Hello\""));
    EXPECT_EQ(r.body, Text(u"Hello"));
    EXPECT_EQ(r.title, u"The Tower");
    EXPECT_EQ(r.selected, 0);
    EXPECT_EQ(r.font, u"Papyrus14");  // the entry's own letter case
}

TEST(ReadLanguageBlock, RulesCases) {
    struct Case {
        const char* name;
        Text record;
        std::optional<Text> body;
        Text title;
        int selected;
    };
    const Case cases[] = {
        {"unknown font stays with the body", RulesRecord(u"<font=Comic><title=T>x\""),
         Text(u"<font=Comic><title=T>x"), u"old title", -1},
        {"font and title ignore case", RulesRecord(u"<FONT=MEDIUMFONT16><TiTlE=T>x\""), Text(u"x"),
         u"T", 4},
        {"title without font", RulesRecord(u"<title=Only>body\""), Text(u"body"), u"Only", -1},
        {"empty title", RulesRecord(u"<title=>body\""), Text(u"body"), u"", -1},
        {"no marker at all", RulesRecord(u"plain body\""), Text(u"plain body"), u"old title", -1},
        {"first > among the first six", RulesRecord(u"ab>cdefgh\""), std::nullopt, u"old title",
         -1},
        {"title without > takes the rest and leaves nothing", RulesRecord(u"<title=abc"),
         std::nullopt, u"abc", -1},
        {"remainder empty", u"lang_english 2005-03-14", std::nullopt, u"old title", -1},
        // Without a space in the first 20 characters, the skip starts at 21.
        {"no space in the key", u"lang_english" + Text(30, u'X') + u"abc\"", Text(u"abc"),
         u"old title", -1},
        {"records keep their markers", RulesRecord(u"x\\n<br>\\ny\""), Text(u"x\\n<br>\\ny"),
         u"old title", -1},
    };
    for (const Case& c : cases) {
        for (bool writerLayout : {false, true}) {
            const auto r = Read(c.record, 0, writerLayout);
            EXPECT_EQ(r.body, c.body) << c.name;
            EXPECT_EQ(r.title, c.title) << c.name;
            EXPECT_EQ(r.selected, c.selected) << c.name;
        }
    }
}

TEST(ReadLanguageBlock, WriterLayout) {
    struct Case {
        const char* name;
        int language;
        Text afterQuote;
        Text body;
        Text title;
        Text font;
        int selected;
    };
    const Case cases[] = {
        {"title and body", 0, uR"(\n<font=Papyrus14>\n\n<title=The Tower>\nHello\n<br>\nWorld\n")",
         uR"(Hello\n<br>\nWorld)", u"The Tower", u"Papyrus14", 0},
        {"no title empties the box", 1, uR"(\n<font=Papyrus14>\n\n")", u"", u"", u"Papyrus14", 0},
        {"italian title and body", 3, uR"(\n<font=Papyrus14>\n\n<title=\nLa Torre>\nCiao")",
         u"Ciao", u"La Torre", u"Papyrus14", 0},
        {"italian body only", 3, uR"(\n<font=Papyrus14>\nCiao\n")", uR"(Ciao\n)", u"", u"Papyrus14",
         0},
        {"font in another case", 2, uR"(\n<font=smallfont10>\nx\n")", u"x", u"", u"SmallFont10", 2},
        {"unknown font is shown as saved", 0, uR"(\n<font=Comic Sans>\nx\n")", u"x", u"",
         u"Comic Sans", -1},
        {"empty font", 0, uR"(\n<font=>\nx\n")", u"x", u"", u"", -1},
        {"body ending in a separator keeps it", 0, uR"(\n<font=F>\nx\n\n")", uR"(x\n)", u"", u"F",
         -1},
    };
    for (const Case& c : cases) {
        FakeFontBox font;
        FakeTextBox title(u"old title");
        const Text record = Text(u"lang_x ") + u"2005-03-14 14:05:09 \"" + c.afterQuote;
        EXPECT_EQ(ReadLanguageBlock(record, c.language, font, title), c.body) << c.name;
        EXPECT_EQ(title.text, c.title) << c.name;
        EXPECT_EQ(font.text, c.font) << c.name;
        EXPECT_EQ(font.selected, c.selected) << c.name;
    }
}

TEST(ReadLanguageBlock, WithoutWriterLayoutTheMarkersStayInTheBody) {
    const auto r =
        Read(RulesRecord(uR"(\n<font=Papyrus14>\n\n<title=The Tower>\nHello\n")"), 0, false);
    EXPECT_EQ(r.body, Text(uR"(\n<font=Papyrus14>\n\n<title=The Tower>\nHello\n)"));
    EXPECT_EQ(r.title, u"old title");
    EXPECT_EQ(r.selected, -1);
}

}  // namespace
}  // namespace lorekeep
