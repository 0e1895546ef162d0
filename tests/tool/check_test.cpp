#include <gtest/gtest.h>

#include "schema/limits.hpp"
#include "schema/schema_writer.hpp"
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

}  // namespace
}  // namespace lorekeep::tool
