#include <gtest/gtest.h>

#include <sstream>

#include "schema/schema_writer.hpp"
#include "support/test_support.hpp"

namespace lorekeep {
namespace {

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
        const Text value = testing::T(line.substr(space + 1));
        const std::string names[] = {"english", "french", "german", "italian"};
        const auto language = std::find(std::begin(names), std::end(names), who) - names;
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

}  // namespace
}  // namespace lorekeep
