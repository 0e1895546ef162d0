// Arbitrary text through the program's one-pass renderer and through the
// literal algorithm: text, caret, selection, colours and alignments must agree.
#include <cstdlib>

#include "markup/renderer.hpp"
#include "support/reference_renderer.hpp"

using namespace lorekeep;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The reference is quadratic: keep bodies to a few thousand characters.
    constexpr std::size_t kMaxCharacters = 4096;
    Text body;
    for (std::size_t k = 0; k + 1 < size && body.size() < kMaxCharacters; k += 2) {
        // Mostly the characters that make markup, from one byte each half
        // the time, so that markers are found often.
        const char16_t c = (data[k] & 1) ? static_cast<char16_t>(data[k + 1])
                                         : static_cast<char16_t>(data[k] | (data[k + 1] << 8));
        body.push_back(c);
    }
    if (!(markup::renderPreview(body) == testing::referenceRender(body))) {
        std::abort();
    }
    return 0;
}
