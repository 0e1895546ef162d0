#include "tool/html.hpp"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string_view>

#include "markup/markers.hpp"
#include "markup/renderer.hpp"
#include "tool/schema_set.hpp"

namespace lorekeep::tool {

namespace {

constexpr std::u16string_view kFallbackTitle = u"Lorekeep preview";

// A light page whatever the browser's theme: the game's white page with black
// text, on a grey desk, with the title and caption above it.
constexpr std::string_view kStyle = R"(:root { color-scheme: only light; }
html { background: #d8d8d8; color: #000; }
body { margin: 0; padding: 24px 16px; font-family: sans-serif; }
header, .page { max-width: 40em; margin: 0 auto; }
header { margin-bottom: 12px; color: #333; }
h1 { margin: 0; font-size: 1.1em; }
.caption { font-size: 0.85em; color: #555; }
.page { box-sizing: border-box; padding: 20px 24px; background: #fff; color: #000;
        border: 1px solid #999; box-shadow: 0 1px 4px rgba(0, 0, 0, 0.3); }
.page p { margin: 0; white-space: pre-wrap; overflow-wrap: anywhere; }
.page p.page-break { border-bottom: 2px dashed #888; padding-bottom: 0.3em; margin-bottom: 0.6em; }
)";

bool isHighSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool isLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

// Control characters that an HTML page may not hold (all but tab, line feed
// and carriage return).
bool isForbiddenControl(char16_t c) {
    return (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r') || c == 0x7F;
}

// UTF-8 that a page can hold: an unpaired surrogate (toUtf8 would write some
// of them as the single raw bytes they stand for) and a control character
// that HTML forbids become U+FFFD.
std::string validUtf8(TextView text) {
    Text clean(text);
    for (std::size_t k = 0; k < clean.size(); ++k) {
        if (isHighSurrogate(clean[k]) && k + 1 < clean.size() && isLowSurrogate(clean[k + 1])) {
            ++k;
        } else if (isHighSurrogate(clean[k]) || isLowSurrogate(clean[k]) ||
                   isForbiddenControl(clean[k])) {
            clean[k] = u'\uFFFD';
        }
    }
    return toUtf8(clean);
}

void appendEscaped(std::string& out, TextView text) {
    for (const char c : validUtf8(text)) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out.push_back(c);
        }
    }
}

std::string_view cssAlignment(markup::Alignment alignment) {
    switch (alignment) {
        case markup::Alignment::Right:
            return "right";
        case markup::Alignment::Centre:
            return "center";
        case markup::Alignment::Left:
            break;
    }
    return "left";
}

void appendRun(std::string& out, TextView text, const markup::CharColour& colour) {
    if (!colour) {
        appendEscaped(out, text);
        return;
    }
    char hex[8];
    std::snprintf(hex, sizeof hex, "#%02x%02x%02x", colour->red, colour->green, colour->blue);
    out.append("<span style=\"color:").append(hex).append("\">");
    appendEscaped(out, text);
    out += "</span>";
}

// The paragraphs of the preview, each cut into runs where its colour changes.
void appendPreview(std::string& out, const markup::RenderedPreview& preview) {
    const Text& text = preview.text;
    const auto& colours = preview.colours;
    std::size_t run = 0;
    std::size_t begin = 0;
    for (std::size_t paragraph = 0; begin <= text.size(); ++paragraph) {
        std::size_t end = begin;
        while (end < text.size() && !markup::isParagraphSeparator(text[end])) {
            ++end;
        }
        const TextView line = TextView(text).substr(begin, end - begin);
        out += "<p ";
        // The page-break line stays as text; the class lets the page draw a boundary under it.
        if (line == markup::kPageBreakLine) {
            out += "class=\"page-break\" ";
        }
        out.append("style=\"text-align:")
            .append(cssAlignment(paragraph < preview.paragraphs.size()
                                     ? preview.paragraphs[paragraph]
                                     : markup::Alignment::Left))
            .append("\">");
        for (std::size_t at = begin; at < end;) {
            while (run + 1 < colours.size() && colours[run + 1].start <= at) {
                ++run;
            }
            const std::size_t stop =
                run + 1 < colours.size() ? std::min(end, colours[run + 1].start) : end;
            appendRun(out, TextView(text).substr(at, stop - at),
                      run < colours.size() ? colours[run].colour : std::nullopt);
            at = stop;
        }
        // An empty paragraph still shows as one empty line.
        out += begin == end ? "<br></p>\n" : "</p>\n";
        begin = end + 1;
    }
}

}  // namespace

std::string renderHtml(const SchemaDocument& document, Language language) {
    const LanguageEntry& entry = document.entry(language);
    const TextView title = !entry.title.empty()     ? TextView(entry.title)
                           : !document.name.empty() ? TextView(document.name)
                                                    : kFallbackTitle;
    std::string out = "<!DOCTYPE html>\n<html lang=\"" + languageCode(language) + "\">\n";
    out +=
        "<head>\n<meta charset=\"utf-8\">\n<meta name=\"color-scheme\" content=\"only light\">\n";
    out += "<title>";
    appendEscaped(out, title);
    out.append("</title>\n<style>\n").append(kStyle).append("</style>\n</head>\n<body>\n");
    out += "<header>\n<h1>";
    appendEscaped(out, title);
    out += "</h1>\n<div class=\"caption\">";
    appendEscaped(out, infoOf(language).tabCaption);
    if (!document.font.empty()) {
        out += " \xC2\xB7 font ";
        appendEscaped(out, document.font);
    }
    out += "</div>\n</header>\n<main class=\"page\">\n";
    appendPreview(out, markup::renderPreview(entry.body));
    out += "</main>\n</body>\n</html>\n";
    return out;
}

}  // namespace lorekeep::tool
