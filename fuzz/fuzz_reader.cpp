// Arbitrary bytes as a schema file, loaded into a window held in memory. The
// load either succeeds silently or shows its one message; nothing else.
#include <cstdlib>

#include "document/messages.hpp"
#include "document/schema_reader.hpp"
#include "support/fake_window.hpp"

using namespace lorekeep;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    testing::FakeWindow w;
    const LoadTargets targets = w.LoadTargetsOf();
    const bool loaded =
        LoadFromBytes(std::string_view(reinterpret_cast<const char*>(data), size), targets);
    if (loaded != w.messages.shown.empty() || w.messages.shown.size() > 1) {
        std::abort();
    }
    if (!loaded && w.messages.shown[0].text != texts::kLoadFailed) {
        std::abort();
    }
    // Every loaded editor's preview was refreshed from it.
    for (int i = 0; i < kLanguageCount && loaded; ++i) {
        if (w.rtbText[kPreviewIndexOffset + i].replacements != 0 ||
            w.rtbText[i].replacements != 1) {
            std::abort();
        }
    }
    return 0;
}
