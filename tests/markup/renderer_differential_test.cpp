#include <gtest/gtest.h>

#include "markup/renderer.hpp"
#include "support/marker_soup.hpp"
#include "support/reference_renderer.hpp"

namespace lorekeep::markup {
namespace {

using testing::MarkerSoup;

// A fixed seed, so that CI sees the same inputs every time; a failure prints
// the body that caused it.
TEST(RendererDifferential, MarkerSoupRendersIdentically) {
    MarkerSoup soup(20261122);
    for (int n = 0; n < 20003; ++n) {
        // Mostly short bodies, and three long ones beyond 16-bit positions.
        const Text body = soup.next(n >= 20000 ? 70000 : n % 10 == 0 ? 400 : 60);
        // The whole preview agrees: text, caret, selection, colours and alignments.
        ASSERT_TRUE(renderPreview(body) == testing::referenceRender(body))
            << "case " << n << ": \"" << toUtf8(body) << "\"";
    }
}

}  // namespace
}  // namespace lorekeep::markup
