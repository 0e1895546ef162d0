#include <gtest/gtest.h>

#include <random>

#include "markup/incremental_renderer.hpp"
#include "markup/renderer.hpp"
#include "support/marker_soup.hpp"
#include "support/preview_patch.hpp"
#include "support/test_support.hpp"

namespace lorekeep::markup {
namespace {

using testing::MarkerSoup;

constexpr std::uint32_t kSeed = 20261125;

// Equal previews, or which part of them differs.
inline ::testing::AssertionResult samePreview(const markup::RenderedPreview& actual,
                                              const markup::RenderedPreview& expected) {
    if (actual.text != expected.text) {
        return ::testing::AssertionFailure() << "text \"" << testing::visible(actual.text) << "\"";
    }
    if (actual.colours != expected.colours) {
        return ::testing::AssertionFailure() << "colours differ";
    }
    if (actual.paragraphs != expected.paragraphs) {
        return ::testing::AssertionFailure() << "alignments differ";
    }
    if (actual.caret != expected.caret || actual.selectionLength != expected.selectionLength) {
        return ::testing::AssertionFailure() << "caret " << actual.caret << "+"
                                             << actual.selectionLength << ", not "
                                             << expected.caret << "+" << expected.selectionLength;
    }
    return ::testing::AssertionSuccess();
}


// Random edits of random bodies that hold many checkpoints (short stretches
// between them, so that markers straddle them often, and now and then the
// program's own): after every edit the kept preview, and a pane patched edit
// by edit, equal a full render of the new body in text, caret, selection,
// colours and alignments.
TEST(IncrementalRenderer, EveryEditGivesWhatAFullRenderGives) {
    MarkerSoup soup(kSeed);
    std::mt19937 random(kSeed);
    int edits = 0;
    for (int n = 0; n < 400; ++n) {
        const bool programs = n % 10 == 0;
        Text body = soup.next(programs ? 4000 : 800);
        IncrementalRenderer renderer(programs ? 1024 : 8 + random() % 40);
        renderer.reset(body);
        RenderedPreview pane = renderPreview(body);
        ASSERT_TRUE(samePreview(renderer.preview(), pane)) << "body \"" << testing::visible(body) << "\"";
        for (int k = 0; k < 30; ++k, ++edits) {
            // Mostly one character typed or deleted, near the last edit or
            // anywhere; now and then a paste or a cut of some size.
            const std::size_t start = random() % (body.size() + 1);
            const std::size_t kind = random() % 10;
            std::size_t removed = 0;
            Text inserted;
            if (kind < 4) {
                inserted = soup.piece().substr(0, 1);
            } else if (kind < 7) {
                removed = 1;
            } else if (kind < 9) {
                inserted = soup.piece();
                removed = random() % 12;
            } else {
                inserted = soup.next(body.size() / 2);
                removed = random() % (body.size() / 2 + 1);
            }
            removed = std::min(removed, body.size() - start);
            const Text before = body;
            body.replace(start, removed, inserted);
            testing::applyPatch(pane, renderer.replace(start, removed, inserted));
            const RenderedPreview expected = renderPreview(body);
            ASSERT_EQ(renderer.body(), body);
            ASSERT_TRUE(samePreview(pane, expected)) << "edit " << edits << " at " << start << ", " << removed
                                      << " removed, \"" << testing::visible(inserted)
                                      << "\" inserted into \"" << testing::visible(before) << "\"";
            ASSERT_TRUE(samePreview(renderer.preview(), expected)) << "edit " << edits;
        }
    }
}

// The patch holds the change, not the whole preview.
TEST(IncrementalRenderer, AKeystrokeInALongBodyPatchesOnlyWhatChanged) {
    Text body;
    for (int k = 0; k < 2000; ++k) {
        body += u"Lore of the keep \\n<br>\\n\\n<dc=255,0,0>\\nred\\n<jc>\\n";
    }
    IncrementalRenderer renderer;
    renderer.reset(body);
    const std::size_t middle = body.size() / 2;
    const PreviewPatch typed = renderer.replace(middle, 0, u"x");
    EXPECT_EQ(typed.removed, 0u);
    EXPECT_EQ(typed.text, u"x");
    // A marker completed by the keystroke changes its own stretch only.
    const std::size_t marker = body.find(u"\\n<br>", middle);
    const PreviewPatch broken = renderer.replace(marker + 3, 1, u"");
    EXPECT_LT(broken.removed + broken.text.size(), 40u);
}

}  // namespace
}  // namespace lorekeep::markup
