// Arbitrary bytes as a document (title, name, font and body as UTF-16 code
// units, lone surrogates and all), rendered as lorekeep-tool's HTML page in
// each language. The page is always valid UTF-8 and holds no tag but the
// renderer's own: nothing of the text can open a tag or an attribute.
#include <cstdlib>
#include <regex>

#include "tool/html.hpp"

using namespace lorekeep;

namespace {

// Valid UTF-8 without the control characters that HTML forbids.
bool validUtf8(const std::string& text) {
    const Text decoded = fromUtf8(text);
    for (std::size_t k = 0; k < decoded.size(); ++k) {
        const char16_t c = decoded[k];
        if (c >= 0xD800 && c < 0xDC00 && k + 1 < decoded.size()) {
            ++k;                                    // a pair: a character beyond the BMP
        } else if ((c >= 0xDC80 && c <= 0xDCFF) ||  // how fromUtf8 keeps a stray byte
                   (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r') || c == 0x7F) {
            return false;
        }
    }
    return true;
}

// Every tag of the page is one of the renderer's, attributes and all.
bool onlyOwnTags(const std::string& page) {
    static const std::regex kOwn(
        R"re(<(/?(html|head|title|style|body|header|h1|div|main|p|span|br)|!DOCTYPE html|)re"
        R"re(html lang="(en|fr|de|it)"|meta charset="utf-8"|)re"
        R"re(meta name="color-scheme" content="only light"|div class="caption"|)re"
        R"re(main class="page"|p (class="page-break" )?style="text-align:(left|center|right)"|)re"
        R"re(span style="color:#[0-9a-f]{6}")>)re");
    for (std::size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
        const std::size_t end = page.find('>', at);
        if (end == std::string::npos ||
            !std::regex_match(page.begin() + static_cast<std::ptrdiff_t>(at),
                              page.begin() + static_cast<std::ptrdiff_t>(end) + 1, kOwn)) {
            return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Code units, split into the fields at each U+001F.
    Text units;
    for (std::size_t k = 0; k + 1 < size; k += 2) {
        units.push_back(static_cast<char16_t>(data[k] | (data[k + 1] << 8)));
    }
    std::array<Text, 4> fields;
    std::size_t field = 0;
    for (const char16_t c : units) {
        if (c == u'\x1F' && field + 1 < fields.size()) {
            ++field;
        } else {
            fields[field].push_back(c);
        }
    }
    SchemaDocument document;
    document.name = fields[1];
    document.font = fields[2];
    for (LanguageEntry& entry : document.entries) {
        entry = {fields[0], fields[3]};
    }
    for (const Language language : kAllLanguages) {
        const std::string page = tool::renderHtml(document, language);
        if (!validUtf8(page) || !onlyOwnTags(page)) {
            std::abort();
        }
    }
    return 0;
}
