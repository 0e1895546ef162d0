// Arbitrary text through the program's one-pass renderer and through the
// literal algorithm: text, caret, selection, colours and alignments must agree.
// Then the rest of the input edits the body, and after each edit the
// incremental renderer's preview, and a preview patched edit by edit, must
// equal a full render.
#include <cstdlib>

#include "markup/incremental_renderer.hpp"
#include "markup/renderer.hpp"
#include "support/preview_patch.hpp"
#include "support/reference_renderer.hpp"

using namespace lorekeep;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The reference is quadratic: keep bodies to a few thousand characters.
    constexpr std::size_t kMaxCharacters = 4096;
    if (size < 2) {
        return 0;
    }
    // The first two bytes say how long the body is; edits follow it.
    const std::size_t length = (data[0] | (data[1] << 8)) % kMaxCharacters;
    Text body;
    std::size_t k = 2;
    for (; k + 1 < size && body.size() < length; k += 2) {
        // Mostly the characters that make markup, from one byte each half
        // the time, so that markers are found often.
        const char16_t c = (data[k] & 1) ? static_cast<char16_t>(data[k + 1])
                                         : static_cast<char16_t>(data[k] | (data[k + 1] << 8));
        body.push_back(c);
    }
    markup::RenderedPreview shown = markup::renderPreview(body);
    if (!(shown == testing::referenceRender(body))) {
        std::abort();
    }
    // Checkpoints close together, so that markers straddle them often.
    markup::IncrementalRenderer renderer(8 + body.size() % 32);
    renderer.reset(body);
    // Each edit: where, how many characters go, and up to 15 that come.
    for (; k + 3 < size; k += 4) {
        const std::size_t start = (data[k] | (data[k + 1] << 8)) % (body.size() + 1);
        const std::size_t removed = std::min<std::size_t>(data[k + 2] % 64, body.size() - start);
        const Text inserted = body.substr(data[k + 3] % (body.size() + 1), data[k + 3] % 16);
        body.replace(start, removed, inserted);
        testing::applyPatch(shown, renderer.replace(start, removed, inserted));
        const markup::RenderedPreview expected = markup::renderPreview(body);
        if (!(shown == expected) || !(renderer.preview() == expected)) {
            std::abort();
        }
    }
    return 0;
}
