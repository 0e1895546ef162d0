#include <gtest/gtest.h>

#include "markup/renderer.hpp"
#include "support/marker_soup.hpp"
#include "support/reference_renderer.hpp"
#include "support/test_support.hpp"

namespace lorekeep::markup {
namespace {

using testing::MarkerSoup;

// Fixed seeds, so that CI sees the same inputs every time; a failure prints
// the body that caused it.
constexpr std::uint32_t kSeed = 20261122;

// The whole preview agrees: text, caret, selection, colours and alignments.
::testing::AssertionResult renderersAgree(const Text& body) {
    if (renderPreview(body) == testing::referenceRender(body)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "body \"" << toUtf8(body) << "\"";
}

TEST(RendererDifferential, MarkerSoupRendersIdentically) {
    MarkerSoup soup(kSeed);
    for (int n = 0; n < 20003; ++n) {
        // Mostly short bodies, and three long ones beyond 16-bit positions.
        const Text body = soup.next(n >= 20000 ? 70000 : n % 10 == 0 ? 400 : 60);
        ASSERT_TRUE(renderersAgree(body)) << "case " << n;
    }
}

}  // namespace
}  // namespace lorekeep::markup
