#include "tool/po.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

#include "schema/schema_writer.hpp"
#include "support/test_support.hpp"

namespace lorekeep::tool {
namespace {

using namespace lorekeep::testing;
using lorekeep::testing::readBytes;  // not the tool's, which may give nothing

// The worked example's tower with a French translation, a schema whose only
// English text is a body (its French the same words), and a file that does not load.
SchemaDocument tower() {
    SchemaDocument doc = workedExample();
    doc.name = u"tower";
    doc.entry(Language::French) = {u"La Tour", u"Bonjour\\n<br>\\nMonde"};
    return doc;
}

SchemaDocument plain() {
    SchemaDocument doc;
    doc.name = u"plain";
    doc.font = u"Papyrus20";
    doc.entry(Language::English).body = u"Yes";
    doc.entry(Language::French).body = u"Yes";
    return doc;
}

std::string withoutStamps(const std::string& bytes) {
    return std::regex_replace(bytes, std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)"), "");
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class PoTest : public ::testing::Test {
  protected:
    PoTest() {
        std::filesystem::create_directory(m_dir / "quests");
        writeBytes(m_dir / "quests/tower.sch", composeSchemaBytes(tower(), kWorkedStamp));
        writeBytes(m_dir / "plain.sch", composeSchemaBytes(plain(), kWorkedStamp));
        writeBytes(m_dir / "broken.sch", "VERSION 2.0\r\n");
        m_before = schemas();
    }

    std::map<std::string, std::string> schemas() const {
        std::map<std::string, std::string> bytes;
        for (const char* name : {"quests/tower.sch", "plain.sch", "broken.sch"}) {
            bytes[name] = readBytes(m_dir / name);
        }
        return bytes;
    }

    std::vector<SchemaFile> files() const {
        std::vector<std::string> problems;
        return findSchemas({m_dir.path()}, problems);
    }

    std::string exported(Language language, bool templateOnly, std::string* errors = nullptr) {
        std::ostringstream err;
        EXPECT_TRUE(exportPo(files(), language, templateOnly, m_dir / "out.po", err));
        if (errors != nullptr) {
            *errors = err.str();
        }
        return readBytes(m_dir / "out.po");
    }

    ImportCounts import(const std::string& po, bool dryRun = false) {
        writeBytes(m_dir / "in.po", po);
        std::ostringstream out;
        const ImportCounts counts = importPo(m_dir / "in.po", files(), dryRun, out);
        m_out = out.str();
        return counts;
    }

    TempDir m_dir;
    std::map<std::string, std::string> m_before;
    std::string m_out;
};

std::string poHeader(const std::string& fields) {
    return "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\"" + fields +
           "\"\n\n";
}

const std::string kTowerBody =
    "#. Keep these markers: \\n<br>\\n\n#: quests/tower.sch\n"
    "msgctxt \"quests/tower.sch|body\"\nmsgid \"Hello\\\\n<br>\\\\nWorld\"\n";

TEST_F(PoTest, ExportsEachEnglishFieldWithItsTranslationAndMsgfmtAcceptsIt) {
    const struct {
        bool templateOnly;
        std::vector<std::string> entries;
    } cases[] = {
        {false,
         {"\"Language: fr\\n\"",
          "\n\n#: quests/tower.sch\nmsgctxt \"quests/tower.sch|title\"\nmsgid \"The "
          "Tower\"\nmsgstr \"La Tour\"\n",
          kTowerBody + "msgstr \"Bonjour\\\\n<br>\\\\nMonde\"\n",
          "\n\n#: plain.sch\nmsgctxt \"plain.sch|body\"\nmsgid \"Yes\"\nmsgstr \"\"\n"}},
        {true,
         {"\"Language: \\n\"", "msgid \"The Tower\"\nmsgstr \"\"\n", kTowerBody + "msgstr \"\"\n",
          "msgid \"Yes\"\nmsgstr \"\"\n"}},
    };
    for (const auto& c : cases) {
        std::string errors;
        const std::string po = exported(Language::French, c.templateOnly, &errors);
        for (const std::string& entry : c.entries) {
            EXPECT_TRUE(contains(po, entry)) << entry << "\nin:\n" << po;
        }
        EXPECT_FALSE(contains(po, "plain.sch|title") || contains(po, "broken.sch")) << po;
        EXPECT_TRUE(contains(errors, "broken.sch: does not load; left out")) << errors;
        if (std::system("command -v msgfmt >/dev/null") == 0) {
            EXPECT_EQ(std::system(("msgfmt --check -o /dev/null " + (m_dir / "out.po")).c_str()),
                      0);
        }
    }
    std::ostringstream err;
    EXPECT_FALSE(exportPo(files(), Language::French, false, m_dir / "no/such/folder.po", err));
    EXPECT_TRUE(contains(err.str(), "cannot be written")) << err.str();
}

TEST_F(PoTest, ImportingAnUnchangedExportTouchesNoFile) {
    for (Language language : {Language::French, Language::German, Language::Italian}) {
        const ImportCounts counts = import(exported(language, false));
        EXPECT_EQ(counts.applied + counts.refused, 0) << m_out;
        EXPECT_EQ(schemas(), m_before);
    }
}

TEST_F(PoTest, WrappedTranslationsAreSavedAsTheWindowSavesThemUnlessDry) {
    std::string po = exported(Language::German, false);
    const std::string body = kTowerBody + "msgstr \"\"\n";
    const std::string title = "msgid \"The Tower\"\nmsgstr \"\"\n";
    ASSERT_TRUE(contains(po, body) && contains(po, title)) << po;
    po.replace(po.find(body), body.size(),
               kTowerBody +
                   "msgstr \"\"\n\"Hallo, dies ist ein langer Text, der über mehrere Zeilen "
                   "\"\n\"geht \\\\n<br>\\\\n und weiter – für 5 €\"\n");
    po.replace(po.find(title), title.size(), "msgid \"The Tower\"\nmsgstr \"Der Turm\"\n");
    SchemaDocument expected = tower();
    expected.entry(Language::German) = {
        u"Der Turm",
        u"Hallo, dies ist ein langer Text, der über mehrere Zeilen geht \\n<br>\\n und weiter – "
        u"für 5 €"};

    for (const bool dryRun : {true, false}) {
        const ImportCounts counts = import(po, dryRun);
        EXPECT_EQ(counts.applied, 2) << m_out;
        EXPECT_EQ(counts.refused, 0) << m_out;
        auto after = schemas();
        if (dryRun) {
            EXPECT_EQ(after, m_before);
            EXPECT_TRUE(contains(m_out, "quests/tower.sch: 2 translations would be applied"));
        } else {
            EXPECT_EQ(after["plain.sch"], m_before["plain.sch"]);
            EXPECT_EQ(withoutStamps(after["quests/tower.sch"]),
                      withoutStamps(composeSchemaBytes(expected, kWorkedStamp)));
        }
    }
}

TEST_F(PoTest, RefusesBadEntriesAndAppliesTheRest) {
    const struct {
        std::string entry;
        std::string says;
        int refused = 1;
    } cases[] = {
        {"msgctxt \"quests/tower.sch|body\"\nmsgid \"Hello\"\nmsgstr \"Bonjour\"",
         "quests/tower.sch|body: refused: the English text changed since export"},
        {"msgctxt \"quests/tower.sch|body\"\nmsgid \"Hello\\\\n<br>\\\\nWorld\"\nmsgstr \"Bonjour "
         "\\\\n<jc>\\\\n Monde\"",
         "refused: the markers differ from the English: missing \\n<br>\\n; extra \\n<jc>\\n"},
        {"msgctxt \"quests/tower.sch|body\"\nmsgid \"Hello\\\\n<br>\\\\nWorld\"\nmsgstr "
         "\"Bonjour\\\\n<br>\\\\n→ Monde\"",
         "refused: \"→\" (U+2192) cannot be written in Windows-1252"},
        {"msgctxt \"quests/tower.sch|title\"\nmsgid \"The Tower\"\nmsgstr \"La > Tour\"",
         "quests/tower.sch|title: refused: a title cannot hold \">\""},
        {"msgctxt \"quests/tower.sch|body\"\nmsgid \"Hello\\\\n<br>\\\\nWorld\"\nmsgstr "
         "\"Bonjour\\\\n<br>\\\\nMonde\\r\\nlang_french\"",
         "refused: the file's layout cannot carry this text"},
        {"msgctxt \"broken.sch|body\"\nmsgid \"Hello\"\nmsgstr \"Bonjour\"",
         "broken.sch|body: refused: the schema file does not load"},
        {"msgctxt \"gone.sch|body\"\nmsgid \"Hello\"\nmsgstr \"Bonjour\"",
         "gone.sch|body: refused: no such schema among the paths"},
        {"msgctxt \"quests/tower.sch|font\"\nmsgid \"Papyrus14\"\nmsgstr \"Papyrus20\"",
         "quests/tower.sch|font: refused: not a schema's title or body"},
        {"#, fuzzy\nmsgctxt \"quests/tower.sch|title\"\nmsgid \"The Tower\"\nmsgstr \"Le Tour\"",
         "quests/tower.sch|title: skipped: marked fuzzy", 0},
    };
    SchemaDocument oui = plain();
    oui.entry(Language::French).body = u"Oui €";
    for (const auto& c : cases) {
        const ImportCounts counts =
            import(poHeader("Language: fr_FR\\n") + c.entry +
                   "\n\nmsgctxt \"plain.sch|body\"\nmsgid \"Yes\"\nmsgstr \"Oui €\"\n");
        EXPECT_EQ(counts.refused, c.refused) << m_out;
        EXPECT_EQ(counts.applied, 1) << m_out;
        EXPECT_TRUE(contains(m_out, c.says)) << m_out;
        auto after = schemas();
        EXPECT_EQ(after["quests/tower.sch"], m_before["quests/tower.sch"]) << c.says;
        EXPECT_EQ(withoutStamps(after["plain.sch"]),
                  withoutStamps(composeSchemaBytes(oui, kWorkedStamp)));
        writeBytes(m_dir / "plain.sch", m_before["plain.sch"]);
    }
}

TEST_F(PoTest, RefusesAWholeFileWithoutATranslationLanguageOrUnreadable) {
    const std::string good = "msgctxt \"plain.sch|body\"\nmsgid \"Yes\"\nmsgstr \"Oui\"\n";
    const struct {
        std::string po;
        std::string says;
    } cases[] = {
        {poHeader("Language: en\\n") + good, "the header's Language is en"},
        {poHeader("Project-Id-Version: x\\n") + good, "the header's Language is missing"},
        {"msgid \"\"\nmsgstr \"Language: fr\\nContent-Type: text/plain; "
         "charset=ISO-8859-1\\n\"\n\n" +
             good,
         "not in UTF-8"},
        {poHeader("Language: fr\\n") + good + "\nmsgid \"open\nmsgstr \"\"\n", "cannot be read"},
        {poHeader("Language: fr\\n") + good + "\n" + good, "cannot be read"},
    };
    for (const auto& c : cases) {
        const ImportCounts counts = import(c.po);
        EXPECT_EQ(counts.applied, 0) << m_out;
        EXPECT_EQ(counts.refused, 1) << m_out;
        EXPECT_TRUE(contains(m_out, c.says)) << m_out;
        EXPECT_EQ(schemas(), m_before);
    }
}

}  // namespace
}  // namespace lorekeep::tool
