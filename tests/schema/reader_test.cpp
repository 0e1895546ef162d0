#include <gtest/gtest.h>

#include <sstream>

#include "schema/schema_document.hpp"
#include "schema/schema_reader.hpp"
#include "support/test_support.hpp"

namespace lorekeep {
namespace {

// A read as the .expected files write it: "records N" (how many records were
// taken apart before the read ended), then "LANGUAGE FIELD VALUE" for each
// field a record sets: a font that is a list entry as "font", any other as
// "font-text", then "title" and "body".
std::string describe(const SchemaRead& read) {
    const char* names[] = {"english", "french", "german", "italian"};
    std::ostringstream out;
    out << "records " << read.records.size() << "\n";
    for (std::size_t i = 0; i < read.records.size(); ++i) {
        const RecordRead& r = read.records[i];
        if (r.font) {
            const bool listed = r.font->entry >= 0 && kFontNames[r.font->entry] == r.font->text;
            out << names[i] << (listed ? " font " : " font-text ") << toUtf8(r.font->text) << "\n";
        }
        for (const auto& [field, value] : {std::pair{" title ", r.title}, {" body ", r.body}}) {
            if (value) {
                out << names[i] << field << toUtf8(*value) << "\n";
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
