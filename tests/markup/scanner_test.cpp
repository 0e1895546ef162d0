#include <gtest/gtest.h>

#include "markup/renderer.hpp"
#include "markup/scanner.hpp"
#include "support/marker_soup.hpp"

namespace lorekeep::markup {
namespace {

CharColour colourAt(const RenderedPreview& preview, std::size_t at) {
    CharColour colour;
    for (const ColourRun& run : preview.colours) {
        if (run.start <= at) {
            colour = run.colour;
        }
    }
    return colour;
}

// The preview is what the scanner's answers make of the body, marker by
// marker along the body: a justification goes, a break becomes its line
// breaks, a colour marker its components (in its colour, when it names one),
// and anything else stays as typed. So every reader that asks the scanner
// reads the body as the preview shows it.
TEST(Scanner, ExplainsThePreviewOfMarkerSoup) {
    testing::MarkerSoup soup(20261125);
    for (int n = 0; n < 5000; ++n) {
        const Text body = soup.next(n % 10 == 0 ? 400 : 60);
        Text expected;
        std::vector<std::pair<std::size_t, Rgb>> colours;
        for (std::size_t i = 0; i < body.size();) {
            const Marker marker = markerAt(body, i);
            const Text breaks(marker.kind == MarkerKind::ParagraphBreak ? 2 : 1,
                              kLineBreakCharacter);
            switch (marker.kind) {
                case MarkerKind::None:
                case MarkerKind::Font:
                    expected.push_back(body[i]);
                    break;
                case MarkerKind::LineBreak:
                case MarkerKind::ParagraphBreak:
                    expected += breaks;
                    break;
                case MarkerKind::PageBreak:
                    expected += breaks + Text(kPageBreakLine) + breaks;
                    break;
                case MarkerKind::Colour: {
                    const ColourComponents& parts = marker.components;
                    if (parts.colour) {
                        colours.emplace_back(expected.size(), *parts.colour);
                    }
                    expected += shownColour(parts.text[0], parts.text[1], parts.text[2]);
                    break;
                }
                default:  // a justification: the marker goes
                    break;
            }
            i += std::max<std::size_t>(marker.span, 1);
        }
        const RenderedPreview preview = renderPreview(body);
        ASSERT_EQ(toUtf8(preview.text), toUtf8(expected)) << "case " << n << ": " << toUtf8(body);
        for (const auto& [at, colour] : colours) {
            ASSERT_EQ(colourAt(preview, at), colour) << "case " << n << ": " << toUtf8(body);
        }
    }
}

}  // namespace
}  // namespace lorekeep::markup
