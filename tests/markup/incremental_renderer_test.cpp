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
        // Now and then a body of several of the renderer's chunks.
        Text body = soup.next(programs ? (n % 20 == 0 ? 12000 : 4000) : 800);
        IncrementalRenderer renderer(programs ? 1024 : 8 + random() % 40);
        renderer.reset(body);
        RenderedPreview pane = renderPreview(body);
        ASSERT_TRUE(renderer.preview() == pane) << "body \"" << testing::visible(body) << "\"";
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
            ASSERT_TRUE(pane == expected)
                << "edit " << edits << " at " << start << ", " << removed << " removed, \""
                << testing::visible(inserted) << "\" inserted into \"" << testing::visible(before)
                << "\"";
            ASSERT_TRUE(renderer.preview() == expected) << "edit " << edits;
        }
    }
}

}  // namespace
}  // namespace lorekeep::markup
