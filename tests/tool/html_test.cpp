#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

#include "markup/markers.hpp"
#include "markup/renderer.hpp"
#include "support/marker_soup.hpp"
#include "tool/html.hpp"
#include "tool/schema_set.hpp"

namespace lorekeep::tool {
namespace {

// Shown text as each UTF-8 byte behind its colour ("#rrggbb", "-------" for the default).
void show(std::string& out, const std::string& colour, std::string_view bytes) {
    for (const char b : bytes) {
        out.append(colour).push_back(b);
    }
}

// Each <p> of a page as a browser reads it: attributes, inner HTML, text, shown text.
struct Paragraph {
    std::string attributes, inner, text, shown;
};

std::vector<Paragraph> paragraphsOf(const std::string& html) {
    static const std::map<std::string, std::string> kEntities{
        {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}};
    std::vector<Paragraph> found;
    for (auto at = html.find("<p "); at != std::string::npos; at = html.find("<p ", at + 1)) {
        const auto open = html.find('>', at), close = html.find("</p>", open);
        Paragraph p{
            html.substr(at + 3, open - at - 3), html.substr(open + 1, close - open - 1), {}, {}};
        std::string colour = "-------";
        for (std::size_t k = 0, end = 0; k < p.inner.size(); k = std::max(end, k + 1)) {
            const char c = p.inner[k];
            end = c == '<'   ? p.inner.find('>', k) + 1
                  : c == '&' ? p.inner.find(';', k) + 1
                             : std::min(p.inner.find_first_of("<&", k), p.inner.size());
            const std::string piece = p.inner.substr(k, end - k);
            if (c == '<' && piece.starts_with("<span style=\"color:#") && piece.size() == 28) {
                colour = piece.substr(19, 7);
            } else if (c == '<') {
                EXPECT_TRUE(piece == "</span>" || piece == "<br>") << piece;
                colour = "-------";
            } else {
                EXPECT_EQ(piece.find_first_of(">\""), std::string::npos) << piece;
                const std::string& text = c == '&' ? kEntities.at(piece) : piece;
                p.text += text;
                show(p.shown, colour, text);
            }
        }
        found.push_back(p);
    }
    return found;
}

// The preview's paragraphs, each colour run converted whole.
std::vector<std::string> expectedShown(const markup::RenderedPreview& preview) {
    std::vector<std::string> paragraphs(1);
    for (std::size_t r = 0; r < preview.colours.size(); ++r) {
        const auto& [start, colour] = preview.colours[r];
        char hex[8] = "-------";
        if (colour) {
            std::snprintf(hex, sizeof hex, "#%02x%02x%02x", colour->red, colour->green,
                          colour->blue);
        }
        const auto end = r + 1 < preview.colours.size() ? preview.colours[r + 1].start : Text::npos;
        for (const char b : toUtf8(TextView(preview.text).substr(start, end - start))) {
            if (b == '\r' || b == '\n') {
                paragraphs.emplace_back();
            } else {
                show(paragraphs.back(), hex, {&b, 1});
            }
        }
    }
    return paragraphs;
}

// Marker soup with entities, runs of spaces and a character outside the BMP mixed in.
Text randomBody(std::uint32_t seed) {
    static constexpr std::array<std::u16string_view, 5> kExtras{u"&", u"\"", u"\U0001F600y",
                                                                u"  x  ", u"<b>"};
    testing::MarkerSoup soup(seed);
    Text body;
    for (std::uint32_t k = 0; k < 50; ++k) {
        body.append(soup.piece()).append(k % 3 ? u"" : kExtras[(seed + k) % kExtras.size()]);
    }
    return body;
}

TEST(HtmlPreview, ParagraphsShowThePreviewsTextColoursAndAlignments) {
    static constexpr std::array<std::string_view, 3> kCss{"left", "right", "center"};
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        const Language language = kAllLanguages[seed % kAllLanguages.size()];
        SchemaDocument document;
        document.entry(language).body = randomBody(seed);
        const auto preview = markup::renderPreview(randomBody(seed));
        const std::string html = renderHtml(document, language);
        EXPECT_NE(html.find("<html lang=\"" + languageCode(language) + "\">"), std::string::npos);
        const auto found = paragraphsOf(html);
        const auto expected = expectedShown(preview);
        ASSERT_EQ(found.size(), preview.paragraphs.size()) << seed;
        ASSERT_EQ(found.size(), expected.size()) << seed;
        for (std::size_t i = 0; i < found.size(); ++i) {
            SCOPED_TRACE(::testing::Message() << "seed " << seed << " paragraph " << i);
            EXPECT_EQ(found[i].shown, expected[i]);
            const auto align = "text-align:" + std::string(kCss[int(preview.paragraphs[i])]);
            EXPECT_NE(found[i].attributes.find(align), std::string::npos);
            EXPECT_EQ(found[i].attributes.find("class=\"page-break\"") != std::string::npos,
                      found[i].text == toUtf8(markup::kPageBreakLine));
            EXPECT_FALSE(found[i].inner.empty());  // an empty one still takes a line
        }
    }
}

TEST(HtmlPreview, WritesHexColoursAndUnpairedSurrogatesAsValidUtf8) {
    SchemaDocument document;
    document.entry(Language::Italian).body = u"a\\n<dc=255,128,0>\\nb\xDC85\xD800";
    const std::string html = renderHtml(document, Language::Italian);
    EXPECT_NE(html.find("a<span style=\"color:#ff8000\">(R:255,G:128,B:0) "
                        "b\xEF\xBF\xBD\xEF\xBF\xBD</span>"),
              std::string::npos);
    const Text decoded = fromUtf8(html);  // each invalid byte comes back as U+DC80..U+DCFF
    EXPECT_EQ(std::count_if(decoded.begin(), decoded.end(),
                            [](char16_t u) { return u >= 0xDC80 && u <= 0xDCFF; }),
              0);
}

TEST(HtmlPreview, TitleIsTheLanguagesEscapedOrTheNameOrAFallback) {
    struct Case {
        std::u16string_view title, name;
        std::string_view shown;
    };
    for (const auto& [title, name, shown] :
         {Case{u"A <b> & \"c\"", u"n", "A &lt;b&gt; &amp; &quot;c&quot;"},
          Case{u"", u"intro", "intro"}, Case{u"", u"", "Lorekeep preview"}}) {
        SchemaDocument document;
        document.entries.fill({u"other", u""});
        document.entry(Language::French).title = Text(title);
        document.name = Text(name);
        const std::string html = renderHtml(document, Language::French);
        for (const std::string tag : {"title>", "h1>"}) {
            EXPECT_NE(html.find("<" + tag + std::string(shown) + "</" + tag), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace lorekeep::tool
