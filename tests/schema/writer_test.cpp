#include <gtest/gtest.h>

#include "schema/schema_writer.hpp"
#include "support/test_support.hpp"

namespace lorekeep {
namespace {

// Each tests/data/writer/NAME.doc is a document ("name", "font" and
// "LANGUAGE title|body" lines), saved with the worked example's stamp; the
// bytes must be exactly those of NAME.sch.
SchemaDocument documentFrom(const std::string& path) {
    SchemaDocument doc;
    for (const testing::CaseLine& line : testing::readCaseFile(path)) {
        if (line.field.empty()) {
            (line.who == "name" ? doc.name : doc.font) = line.value;
        } else {
            LanguageEntry& entry = doc.entries[testing::languageNamed(line.who)];
            (line.field == "title" ? entry.title : entry.body) = line.value;
        }
    }
    return doc;
}

class WriterCase : public ::testing::TestWithParam<std::string> {};

TEST_P(WriterCase, WritesExactlyTheExpectedBytes) {
    const std::string base = testing::dataPath("writer/" + GetParam());
    EXPECT_EQ(composeSchemaBytes(documentFrom(base + ".doc"), testing::kWorkedStamp),
              testing::readBytes(base + ".sch"));
}

INSTANTIATE_TEST_SUITE_P(Files, WriterCase,
                         ::testing::ValuesIn(testing::caseNames("writer", ".doc")),
                         [](const auto& tc) { return tc.param; });

}  // namespace
}  // namespace lorekeep
