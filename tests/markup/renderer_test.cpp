#include <gtest/gtest.h>

#include <sstream>

#include "markup/renderer.hpp"
#include "support/test_support.hpp"

namespace lorekeep::markup {
namespace {

// A preview on one line: its text, "| caret" with the selection's start and
// length, "| colours" with each run's start and colour ("-" for the
// default), "| paragraphs" with each paragraph's alignment (L, C, R).
std::string describe(const RenderedPreview& preview) {
    std::ostringstream out;
    out << testing::visible(preview.text) << " | caret " << preview.caret << "+"
        << preview.selectionLength << " | colours";
    for (const ColourRun& run : preview.colours) {
        out << " " << run.start << ":";
        if (run.colour) {
            out << int(run.colour->red) << "," << int(run.colour->green) << ","
                << int(run.colour->blue);
        } else {
            out << "-";
        }
    }
    out << " | paragraphs ";
    for (Alignment alignment : preview.paragraphs) {
        out << (alignment == Alignment::Left ? 'L' : alignment == Alignment::Centre ? 'C' : 'R');
    }
    return out.str();
}

// tests/data/renderer/cases.txt: each body (the two characters backslash
// and n are the game's separator; "<LF>" a real line feed), then "=> " and
// the preview it must give. (The reference renderer answers to the program
// in the differential test.)
TEST(Renderer, CasesRenderAsExpected) {
    std::istringstream cases(testing::readBytes(testing::dataPath("renderer/cases.txt")));
    Text body;
    int checked = 0;
    for (std::string line; std::getline(cases, line);) {
        if (line.starts_with("=> ")) {
            EXPECT_EQ(describe(renderPreview(body)), line.substr(3)) << testing::visible(body);
            ++checked;
        } else if (!line.starts_with("#")) {
            for (auto at = line.find("<LF>"); at != std::string::npos; at = line.find("<LF>")) {
                line.replace(at, 4, "\n");
            }
            body = fromUtf8(line);
        }
    }
    EXPECT_GE(checked, 30);
}

}  // namespace
}  // namespace lorekeep::markup
