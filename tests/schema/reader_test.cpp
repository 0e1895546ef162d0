#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sstream>

#include "schema/schema_document.hpp"
#include "schema/schema_reader.hpp"
#include "schema/windows1252.hpp"
#include "support/test_support.hpp"

namespace lorekeep {
namespace {

using testing::readBytes;

// Each tests/data/reader/NAME.sch is read and compared with NAME.expected:
// "records N" (how many records were taken apart before the read ended),
// then "LANGUAGE font|title|body VALUE" for each field a record sets; a font
// that is a list entry is written as the entry.
SchemaRead expectedRead(const std::string& path) {
    SchemaRead read;
    for (const testing::CaseLine& line : testing::readCaseFile(path)) {
        if (line.who == "records") {
            read.records.resize(std::stoul(toUtf8(line.value)));
            continue;
        }
        const std::size_t language = testing::languageNamed(line.who);
        if (language >= read.records.size()) {
            ADD_FAILURE() << path << ": no record for " << line.who;
            continue;
        }
        RecordRead& record = read.records[language];
        if (line.field == "font") {
            const auto listed = std::find(kFontNames.begin(), kFontNames.end(), line.value);
            record.font = FontChoice{
                listed == kFontNames.end() ? -1 : static_cast<int>(listed - kFontNames.begin()),
                line.value};
        } else {
            (line.field == "title" ? record.title : record.body) = line.value;
        }
    }
    return read;
}

class ReaderCase : public ::testing::TestWithParam<std::string> {};

TEST_P(ReaderCase, ReadsAsExpected) {
    const std::string base = testing::dataPath("reader/" + GetParam());
    const SchemaRead read = readSchema(readBytes(base + ".sch"));
    const SchemaRead expected = expectedRead(base + ".expected");
    ASSERT_EQ(read.records.size(), expected.records.size());
    for (std::size_t i = 0; i < read.records.size(); ++i) {
        const RecordRead& r = read.records[i];
        const RecordRead& e = expected.records[i];
        EXPECT_EQ(r.font, e.font) << "record " << i;
        EXPECT_EQ(r.title.value_or(u"-"), e.title.value_or(u"-")) << "record " << i;
        EXPECT_EQ(testing::escaped(r.body.value_or(u"-")), testing::escaped(e.body.value_or(u"-")))
            << "record " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, ReaderCase,
                         ::testing::ValuesIn(testing::caseNames("reader", ".sch")),
                         [](const auto& tc) { return tc.param; });

// Widening the reader to the writer's layout must not change how a record
// in the rules' own layout reads.
TEST(ReaderLayouts, TheRulesLayoutReadsTheSameEitherWay) {
    std::mt19937 random(7);
    auto randomText = [&](std::size_t maxLength) {
        static const std::u16string_view kPieces[] = {u"<font=", u"<title=",   u">", u"\\n",
                                                      u"x",      u"Papyrus14", u"é", u" "};
        Text text;
        for (std::size_t n = random() % (maxLength + 1); n > 0; --n) {
            text += kPieces[random() % std::size(kPieces)];
        }
        return text;
    };
    for (int n = 0; n < 3000; ++n) {
        std::string file = "VERSION 2.0\r\nTextEntry\r\nrules\r\n";
        for (const char* key : {"lang_english ", "lang_french ", "lang_german ", "lang_italian "}) {
            Text rest = randomText(12) + u"\"";
            if (!rest.starts_with(u"\\n<font=")) {  // that opening is the writer's own layout
                file +=
                    key + std::string("2005-03-14 14:05:09 \"") + encodeWindows1252(rest) + "\r\n";
            }
        }
        ASSERT_EQ(readSchema(file, {false, 0}).records, readSchema(file).records) << file;
    }
}

}  // namespace
}  // namespace lorekeep
