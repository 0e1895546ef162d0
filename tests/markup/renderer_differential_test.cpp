#include <gtest/gtest.h>

#include "markup/model_pane.hpp"
#include "support/marker_soup.hpp"
#include "support/render_helpers.hpp"

namespace lorekeep::markup {
namespace {

using testing::Escaped;
using testing::MarkerSoup;
using testing::RenderWithProgram;
using testing::RenderWithReference;

// Fixed seeds, so that CI sees the same inputs every time; a failure prints
// the body that caused it.
constexpr std::uint32_t kSeed = 20261122;

::testing::AssertionResult RenderersAgree(const Text& body) {
    const RenderedPreview direct = modSchemaParse::RenderPreview(body);
    const RenderedPreview program = RenderWithProgram(body);
    const RenderedPreview reference = RenderWithReference(body);
    // A pane that knows only the primitive operations shows the same.
    ModelPane primitive;
    primitive.PreviewPane::ShowRendered(direct);
    if (program == reference && direct == reference && primitive.Snapshot() == reference) {
        return ::testing::AssertionSuccess();
    }
    auto failure = ::testing::AssertionFailure() << "body \"" << Escaped(body) << "\"\n";
    failure << " reference text \"" << Escaped(reference.text) << "\" caret " << reference.caret
            << "+" << reference.selectionLength << "\n";
    failure << " program   text \"" << Escaped(program.text) << "\" caret " << program.caret << "+"
            << program.selectionLength << "\n";
    failure << " colours " << (program.colours == reference.colours ? "agree" : "differ")
            << ", paragraphs " << (program.paragraphs == reference.paragraphs ? "agree" : "differ")
            << ", direct result " << (direct == program ? "agrees" : "differs")
            << ", primitive pane " << (primitive.Snapshot() == reference ? "agrees" : "differs");
    return failure;
}

TEST(RendererDifferential, ShortMarkerSoupRendersIdentically) {
    MarkerSoup soup(kSeed);
    for (int n = 0; n < 20000; ++n) {
        const Text body = soup.Next(n % 10 == 0 ? 400 : 60);
        ASSERT_TRUE(RenderersAgree(body)) << "case " << n;
    }
}

TEST(RendererDifferential, LongMarkerSoupRendersIdentically) {
    MarkerSoup soup(kSeed + 1);
    for (std::size_t length : {20000u, 40000u, 70000u}) {
        const Text body = soup.Next(length);
        ASSERT_TRUE(RenderersAgree(body)) << "length " << body.size();
    }
}

}  // namespace
}  // namespace lorekeep::markup
