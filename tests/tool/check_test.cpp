#include <gtest/gtest.h>

#include <random>

#include "markup/markers.hpp"
#include "markup/renderer.hpp"
#include "schema/limits.hpp"
#include "schema/schema_writer.hpp"
#include "support/fakes.hpp"
#include "support/test_support.hpp"
#include "tool/check.hpp"

namespace lorekeep::tool {
namespace {

// A schema as the window saves it, every field filled and translated, with
// the English body given.
std::string saved(TextView englishBody, TextView frenchBody = u"Bonjour") {
    SchemaDocument document;
    document.font = u"Papyrus14";
    document.name = u"tower";
    const Text titles[] = {u"The Tower", u"La Tour", u"Der Turm", u"La Torre"};
    const Text bodies[] = {Text(englishBody), Text(frenchBody), u"Hallo", u"Ciao"};
    for (int i = 0; i < kLanguageCount; ++i) {
        document.entries[i] = {titles[i], bodies[i]};
    }
    return composeSchemaBytes(document, {2005, 3, 14, 14, 5, 9});
}

// "en body 6 warning: <message>" for each finding.
std::vector<std::string> summary(std::string_view bytes) {
    std::vector<std::string> lines;
    for (const Finding& f : checkSchema(bytes, "t.sch")) {
        EXPECT_EQ(f.file, "t.sch");
        EXPECT_EQ(f.message.find('\n'), std::string::npos);
        lines.push_back((f.language.empty() ? "" : f.language + " ") + f.field + " " +
                        std::to_string(f.position) +
                        (f.severity == Severity::Error ? " error: " : " warning: ") + f.message);
    }
    return lines;
}

std::string replaced(std::string text, std::string_view what, std::string_view with) {
    text.replace(text.find(what), what.size(), with);
    return text;
}

TEST(Check, FindsWhatGoesWrongInTheWindowOrThePreview) {
    const std::string clean = saved(u"Hello\\n<br>\\n\\n<dc=255,0,7>\\nred\\n<jc>\\n\\n<pb>\\nend");
    const std::string older =
        "VERSION 2.0\r\nTextEntry\r\nt\r\n"
        "lang_english 2005-03-14 14:05:09 \"<font=papyrus14>\\n<title=X>\\nbody\"\r\n"
        "lang_french 2005-03-14 14:05:09 \"<font=papyrus14><title=Y>corps\"\r\n"
        "lang_german 2005-03-14 14:05:09 \"<font=papyrus14><title=Z>Text\"\r\n"
        "lang_italian 2005-03-14 14:05:09 \"<font=papyrus14><title=W>testo\"\r\n";
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {clean, {}},
        {saved(u"\\n<dc=300,0,x>\\nHi"),
         {"en body 6 warning: colour component \"300\" is not a whole number from 0 to 255",
          "en body 12 warning: colour component \"x\" is not a whole number from 0 to 255"}},
        {saved(u"a\\n<XX>\\nb\\n<font=P>\\nc\\n<open"),
         {"en body 1 warning: unknown tag \"<XX>\" is shown as typed in the preview",
          "en body 10 warning: the font tag \"<font=P>\" is shown as typed in the preview",
          "en body 23 warning: \"\\n<\" is not closed by \">\" before the next \\n; the "
          "preview shows it as typed"}},
        {saved(u"\\n<dc=1,2,3>" + Text(40, u'x')),
         {"en body 0 error: the colour marker has no closing \\n within reach: the preview "
          "swallows the 33 characters from its backslash"}},
        {saved(u"\\n<dc=1,2,3>xy\\nz"),
         {"en body 11 warning: text between the colour marker's \">\" and its closing \\n is "
          "not shown"}},
        {saved(u"Same", u"Same"),
         {"fr body 0 warning: the same as the English body: not translated?"}},
        {saved(u"Hi", u""), {"fr body 0 warning: empty body"}},
        // The English body opens with a title tag that a save would turn into the title.
        {older,
         {"en record 0 warning: in the older layout (tags without \\n around them); a save "
          "writes the current one",
          "en title 0 error: a save cannot carry this title: it would load back differently",
          "en title 0 warning: empty title",
          "en body 0 error: a save cannot carry this body: it would load back differently",
          "en body 0 warning: unknown tag \"<title=X>\" is shown as typed in the preview",
          "fr record 0 warning: in the older layout (tags without \\n around them); a save "
          "writes the current one",
          "de record 0 warning: in the older layout (tags without \\n around them); a save "
          "writes the current one",
          "it record 0 warning: in the older layout (tags without \\n around them); a save "
          "writes the current one"}},
        {replaced(clean, "red",
                  "r\x81"
                  "d"),
         {"file " + std::to_string(clean.find("red") + 1) +
          " warning: byte 0x81 is not a character in Windows-1252"}},
        {replaced(clean, "Hello", "Hello\r\nlang_x"),
         {"file 0 error: does not load: it holds a fifth record (a line of a text starts with "
          "\"lang_\")"}},
        {replaced(clean, "tower", "tow,er"),
         {"file 0 error: does not load: a field stands before the first record (a comma in "
          "the schema name splits its line)"}},
        {clean.substr(0, clean.find("lang_german")),
         {"de record 0 error: does not load: the German record is missing"}},
        {"VERSION 2.0\r\n",
         {"file 0 error: does not load: the file ends before its three "
          "header lines"}},
        // Loads, but the window refuses a field longer than its box holds.
        {replaced(clean, "La Tour", std::string(kMaxTitleLength + 1, 't')),
         {"fr title 4000000 error: longer than the window's limit of 4000000 characters "
          "(4000001): the window does not load this file"}},
        // In any record, not only the one whose font the window shows.
        {replaced(clean, "Papyrus14", std::string(kMaxLineLength + 1, 'f')),
         {"en font 32767 error: longer than the window's limit of 32767 characters (32768): "
          "the window does not load this file"}},
    };
    for (const auto& [bytes, expected] : cases) {
        EXPECT_EQ(summary(bytes), expected) << bytes;
    }
}

// The colour command, the preview and check read a colour marker alike: what
// OK accepts the preview colours with exactly those numbers and check passes;
// what OK refuses, written by hand, check reports and the preview does not
// colour with the numbers meant.
TEST(Check, AgreesWithTheColourCommandAndThePreview) {
    std::mt19937 random(20261125);
    // Half the markers of numbers near the range, the rest of anything.
    auto component = [&](bool number) {
        static constexpr std::u16string_view kAlphabet = u"0123456789 +-a";
        if (number) {
            return fromUtf8((random() % 4 == 0 ? "0" : "") + std::to_string(random() % 300));
        }
        Text text;
        for (std::size_t n = random() % 6; n > 0; --n) {
            text.push_back(kAlphabet[random() % (random() % 3 == 0 ? kAlphabet.size() : 10)]);
        }
        return text;
    };
    // The number a modder meant: the digits, whatever else stands around them.
    auto meant = [](TextView text) {
        unsigned value = 0;
        for (const char16_t c : text) {
            value = c >= u'0' && c <= u'9' ? std::min(value * 10 + (c - u'0'), 9999u) : value;
        }
        return value;
    };
    int accepted = 0;
    for (int n = 0; n < 3000; ++n) {
        const bool numbers = n % 2 == 0;
        const std::array<Text, 3> typed{component(numbers), component(numbers), component(numbers)};
        testing::FakeWindow w;
        w.editor.colourClicked(Language::English);
        for (int c = 0; c < 3; ++c) {
            w.colourBoxes[c].value = typed[c];
        }
        w.editor.okClicked(Language::English);
        const bool ok = w.messages.shown.empty();
        accepted += ok ? 1 : 0;
        const Text body = markup::colourMarker(typed[0], typed[1], typed[2]) + u"X";
        const markup::CharColour shown = markup::renderPreview(body).colours.front().colour;
        const bool coloursAsMeant = shown && shown->red == meant(typed[0]) &&
                                    shown->green == meant(typed[1]) &&
                                    shown->blue == meant(typed[2]);
        const bool checkSilent = summary(saved(body)).empty();
        ASSERT_EQ(ok, coloursAsMeant) << toUtf8(body);
        ASSERT_EQ(ok, checkSilent) << toUtf8(body);
        ASSERT_EQ(ok, w.boxes[0].text == body.substr(0, body.size() - 1)) << toUtf8(body);
    }
    EXPECT_GT(accepted, 500);
}

TEST(Check, FormatsFindingsAsLinesAndJson) {
    const Finding finding{"a \"b\".sch", "fr", "body", 3, Severity::Error, "x\\n\ty"};
    EXPECT_EQ(formatFinding(finding), "a \"b\".sch: fr body 3: error: x\\n\ty");
    EXPECT_EQ(formatFindingsJson({finding, finding}).size(),
              2 * formatFindingsJson({finding}).size() - 1);
    EXPECT_EQ(formatFindingsJson({finding}),
              "[{\"file\":\"a \\\"b\\\".sch\",\"language\":\"fr\",\"field\":\"body\","
              "\"position\":3,\"severity\":\"error\",\"message\":\"x\\\\n\\u0009y\"}]");
    EXPECT_EQ(formatFindingsJson({}), "[]");
    // A file name that is not UTF-8 still gives valid UTF-8, its bytes escaped
    // as Python's surrogateescape reads them back.
    const Finding latin1{"caf\xE9 \xE2\x82\xAC.sch", "", "file", 0, Severity::Error, "x"};
    EXPECT_NE(formatFindingsJson({latin1}).find("\"file\":\"caf\\udce9 \xE2\x82\xAC.sch\""),
              std::string::npos);
}

// Each misspelt word of a title or body is a warning at its place, among
// the record's other findings in the order of their places, with the
// dictionary's first suggestions (for the first words of a run only); a
// mod's own words count as right in every language.
TEST(Check, ReportsMisspeltWordsAgainstEachLanguagesDictionary) {
    const testing::TempDir personal;  // the machine's own word lists stay out of it
    setenv("ENCHANT_CONFIG_DIR", personal.path().c_str(), 1);
    const std::string bytes =
        replaced(saved(u"The wrold\\n<dc=300,0,0>\\nWelt", u"Le mondde\\n<jc>\\nWelt"),
                 "<title=La Tour>", "<title=La Tourr>");
    spelling::Dictionaries dictionaries;
    SpellingReport report(dictionaries, 3);
    std::vector<std::string> lines;
    for (const Finding& f : checkSchema(bytes, "t.sch", &report)) {
        lines.push_back(f.language + " " + f.field + " " + std::to_string(f.position) + " " +
                        (f.severity == Severity::Warning ? "warning: " : "error: ") + f.message);
    }
    // "Welt" is right in English and German, and no French word.
    ASSERT_EQ(lines.size(), 5u);
    const std::string prefixes[] = {
        "en body 4 warning: \"wrold\" is not in the English dictionary (world",
        "en body 15 warning: colour component \"300\"",
        "fr title 3 warning: \"Tourr\" is not in the French dictionary (",
        "fr body 3 warning: \"mondde\" is not in the French dictionary (monde",
    };
    for (std::size_t k = 0; k < std::size(prefixes); ++k) {
        EXPECT_TRUE(lines[k].starts_with(prefixes[k])) << lines[k];
    }
    EXPECT_EQ(lines[4], "fr body 17 warning: \"Welt\" is not in the French dictionary")
        << "past the words that get suggestions";

    dictionaries.ignoreAll(Language::English, u"wrold");
    const std::vector<Finding> after = checkSchema(bytes, "t.sch", &report);
    ASSERT_EQ(after.size(), 4u);
    EXPECT_EQ(after[0].message.substr(0, 17), "colour component ");
    EXPECT_TRUE(checkSchema(saved(u"The world"), "t.sch", &report).empty());
    unsetenv("ENCHANT_CONFIG_DIR");
}

}  // namespace
}  // namespace lorekeep::tool
