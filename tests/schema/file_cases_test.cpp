#include <gtest/gtest.h>

#include <sstream>

#include "schema/schema_document.hpp"
#include "schema/schema_reader.hpp"
#include "schema/schema_writer.hpp"
#include "support/test_support.hpp"

// The writer and the reader against the cases in tests/data/writer and
// tests/data/reader: one file per case, and one test for each folder.
namespace lorekeep {
namespace {

// The languages as the case files name them, in order.
const std::string kNames[] = {"english", "french", "german", "italian"};

// A document as the .doc files write it: "name VALUE", "font VALUE" and
// "LANGUAGE title|body VALUE" lines, each value running to the end of its
// line; "<LF>" and "<CR>" stand for real line breaks, "#" starts a comment.
SchemaDocument documentFrom(const std::string& path) {
    SchemaDocument doc;
    std::istringstream in(testing::readBytes(path));
    for (std::string line; std::getline(in, line);) {
        for (auto [token, character] : {std::pair{"<CR>", "\r"}, std::pair{"<LF>", "\n"}}) {
            for (auto at = line.find(token); at != std::string::npos; at = line.find(token)) {
                line.replace(at, 4, character);
            }
        }
        const std::size_t space = line.find(' ');
        const std::string who = line.substr(0, space);
        const Text value = fromUtf8(line.substr(space + 1));
        const auto language = std::find(std::begin(kNames), std::end(kNames), who) - kNames;
        if (who == "name" || who == "font") {
            (who == "name" ? doc.name : doc.font) = value;
        } else if (language < kLanguageCount) {
            LanguageEntry& entry = doc.entries[language];
            const bool title = value.starts_with(u"title ");
            (title ? entry.title : entry.body) = value.substr(title ? 6 : 5);
        }
    }
    return doc;
}

class WriterCase : public ::testing::TestWithParam<std::string> {};

// Each tests/data/writer/NAME.doc, saved with the worked example's stamp,
// gives exactly the bytes of NAME.sch.
TEST_P(WriterCase, WritesExactlyTheExpectedBytes) {
    const std::string base = testing::dataPath("writer/" + GetParam());
    EXPECT_EQ(composeSchemaBytes(documentFrom(base + ".doc"), testing::kWorkedStamp),
              testing::readBytes(base + ".sch"));
}

INSTANTIATE_TEST_SUITE_P(Files, WriterCase,
                         ::testing::ValuesIn(testing::caseNames("writer", ".doc")),
                         [](const auto& tc) { return tc.param; });

// A read as the .expected files write it: "records N" (how many records were
// taken apart before the read ended), then "LANGUAGE FIELD VALUE" for each
// field a record sets: a font that is a list entry as "font", any other as
// "font-text", then "title" and "body".
std::string describe(const SchemaRead& read) {
    std::ostringstream out;
    out << "records " << read.records.size() << "\n";
    for (std::size_t i = 0; i < read.records.size(); ++i) {
        const RecordRead& r = read.records[i];
        if (r.font) {
            const bool listed = r.font->entry >= 0 && kFontNames[r.font->entry] == r.font->text;
            out << kNames[i] << (listed ? " font " : " font-text ")
                << testing::visible(r.font->text) << "\n";
        }
        for (const auto& [field, value] : {std::pair{" title ", r.title}, {" body ", r.body}}) {
            if (value) {
                out << kNames[i] << field << testing::visible(*value) << "\n";
            }
        }
    }
    return out.str();
}

class ReaderCase : public ::testing::TestWithParam<std::string> {};

// Each tests/data/reader/NAME.sch reads as NAME.expected says, whose lines
// starting with "#" tell what the case is about.
TEST_P(ReaderCase, ReadsAsExpected) {
    const std::string base = testing::dataPath("reader/" + GetParam());
    std::istringstream expected(testing::readBytes(base + ".expected"));
    std::string wanted;
    for (std::string line; std::getline(expected, line);) {
        if (!line.empty() && line[0] != '#') {
            wanted += line + "\n";
        }
    }
    EXPECT_EQ(describe(readSchema(testing::readBytes(base + ".sch"))), wanted);
}

INSTANTIATE_TEST_SUITE_P(Files, ReaderCase,
                         ::testing::ValuesIn(testing::caseNames("reader", ".sch")),
                         [](const auto& tc) { return tc.param; });

}  // namespace
}  // namespace lorekeep
