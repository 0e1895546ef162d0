#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "document/schema_writer.hpp"
#include "support/test_text.hpp"
#include "support/worked_example.hpp"

namespace lorekeep {
namespace {

using testing::DataPath;
using testing::kWorkedStamp;
using testing::ReadBytes;
using testing::T;
using testing::WorkedExample;

std::vector<Text> SplitCrLf(const Text& file) {
    std::vector<Text> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = file.find(u"\r\n", start)) != Text::npos; start = end + 2) {
        lines.push_back(file.substr(start, end - start));
    }
    EXPECT_EQ(start, file.size()) << "the last line must end in CR LF";
    return lines;
}

TEST(SchemaWriter, WorkedExampleMatchesTheExpectedBytes) {
    EXPECT_EQ(ComposeSchemaBytes(WorkedExample(), kWorkedStamp),
              ReadBytes(DataPath("worked_example.sch")));
}

TEST(SchemaWriter, WorkedExampleItalianRecordHasItsTwoDifferences) {
    const auto lines = SplitCrLf(ComposeSchemaText(WorkedExample(), kWorkedStamp));
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(
        lines[6],
        T(R"(lang_italian 2005-03-14 14:05:09 "\n<font=Papyrus14>\n\n<title=\nLa Torre>\nCiao")"));
}

TEST(SchemaWriter, OpeningQuoteIsThe21stCharacterAfterTheKeysSpaceInEveryRecord) {
    const auto lines = SplitCrLf(ComposeSchemaText(WorkedExample(), kWorkedStamp));
    ASSERT_EQ(lines.size(), 7u);
    for (Language language : kAllLanguages) {
        const Text& record = lines[3 + IndexOf(language)];
        const std::size_t space = InfoOf(language).recordKey.size() - 1;
        ASSERT_EQ(record[space], u' ');
        EXPECT_EQ(record[space + 21], u'"') << ToUtf8(record);
        EXPECT_EQ(record.substr(space + 22, 7), u"\\n<font") << ToUtf8(record);
    }
}

// One language record for a document that differs from an empty one in a single
// way: each case names the change, the record it looks at and what that record
// must read after the common 34 characters of key, stamp and quote.
struct RecordCase {
    const char* name;
    std::function<void(SchemaDocument&)> change;
    Language language;
    const char* expectedAfterQuote;
};

class RecordLayout : public ::testing::TestWithParam<RecordCase> {};

TEST_P(RecordLayout, RecordReadsAsExpected) {
    const RecordCase& c = GetParam();
    SchemaDocument doc;
    doc.font = u"Papyrus14";
    c.change(doc);
    const auto lines = SplitCrLf(ComposeSchemaText(doc, kWorkedStamp));
    ASSERT_EQ(lines.size(), 7u);
    const Text prefix = Text(InfoOf(c.language).recordKey) + u"2005-03-14 14:05:09 \"";
    const Text& record = lines[3 + IndexOf(c.language)];
    ASSERT_EQ(record.substr(0, prefix.size()), prefix);
    EXPECT_EQ(record.substr(prefix.size()), T(c.expectedAfterQuote));
}

void SetEnglish(SchemaDocument& d, const char* title, const char* body) {
    d.entry(Language::English) = {T(title), T(body)};
}
void SetItalian(SchemaDocument& d, const char* title, const char* body) {
    d.entry(Language::Italian) = {T(title), T(body)};
}

INSTANTIATE_TEST_SUITE_P(
    EdgeCases, RecordLayout,
    ::testing::Values(
        RecordCase{"EmptyEnglish", [](SchemaDocument&) {}, Language::English,
                   R"(\n<font=Papyrus14>\n\n")"},
        RecordCase{"EmptyItalian", [](SchemaDocument&) {}, Language::Italian,
                   R"(\n<font=Papyrus14>\n")"},
        RecordCase{"EmptyFont", [](SchemaDocument& d) { d.font.clear(); }, Language::German,
                   R"(\n<font=>\n\n")"},
        RecordCase{"SpaceOnlyTitleIsWritten", [](SchemaDocument& d) { SetEnglish(d, "   ", ""); },
                   Language::English, R"(\n<font=Papyrus14>\n\n<title=   >\n\n")"},
        RecordCase{"ItalianTitleWithoutBody", [](SchemaDocument& d) { SetItalian(d, "T", ""); },
                   Language::Italian, R"(\n<font=Papyrus14>\n\n<title=\nT>\n")"},
        RecordCase{"ItalianBodyWithoutTitle", [](SchemaDocument& d) { SetItalian(d, "", "Ciao"); },
                   Language::Italian, R"(\n<font=Papyrus14>\nCiao")"},
        RecordCase{"NothingEscaped", [](SchemaDocument& d) { SetEnglish(d, "a>b\"c", "x\"y>z,w"); },
                   Language::English, R"(\n<font=Papyrus14>\n\n<title=a>b"c>\nx"y>z,w\n")"},
        RecordCase{"FontWithOddCharacters", [](SchemaDocument& d) { d.font = u" Font>\""; },
                   Language::French, R"(\n<font= Font>">\n\n")"},
        RecordCase{"MarkersInBodyUnchanged",
                   [](SchemaDocument& d) { SetEnglish(d, "", R"(\n<jc>\n\n<dc=1,2,3>\nX)"); },
                   Language::English, R"(\n<font=Papyrus14>\n\n<jc>\n\n<dc=1,2,3>\nX\n")"}),
    [](const auto& tc) { return std::string(tc.param.name); });

TEST(SchemaWriter, RealLineBreakInABodyIsWrittenUnchanged) {
    SchemaDocument doc;
    doc.font = u"F";
    doc.entry(Language::French).body = u"one\ntwo";
    const std::string bytes = ComposeSchemaBytes(doc, kWorkedStamp);
    EXPECT_NE(bytes.find("\"\\n<font=F>\\none\ntwo\\n\"\r\n"), std::string::npos);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 8);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\r'), 7);
}

}  // namespace
}  // namespace lorekeep
