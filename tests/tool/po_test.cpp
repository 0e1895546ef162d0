#include "tool/po.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

#include "schema/limits.hpp"
#include "schema/schema_writer.hpp"
#include "support/syscall_faults.hpp"
#include "support/test_support.hpp"

namespace lorekeep::tool {
namespace {

using namespace lorekeep::testing;
using lorekeep::testing::readBytes;  // not the tool's, which may give nothing

// The worked example's tower with a French translation, a schema whose only
// English text is a body (its French the same words), and a file that does not load.
SchemaDocument tower() {
    SchemaDocument doc = workedExample();
    doc.name = u"The Dark Tower";  // the name line, not the file's name
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
        std::vector<PathProblem> problems;
        return findSchemas({m_dir.path()}, problems);
    }

    std::string exported(Language language, bool templateOnly, std::string* errors = nullptr) {
        std::ostringstream err;
        EXPECT_TRUE(exportPo(files(), language, templateOnly, m_dir / "out.po", err, err));
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
    EXPECT_FALSE(exportPo(files(), Language::French, false, m_dir / "no/such/folder.po", err, err));
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
            continue;
        }
        // Only the German record is new, with a new stamp: the name line and
        // the other records, stamps and all, keep their bytes.
        EXPECT_EQ(after["plain.sch"], m_before["plain.sch"]);
        const std::string& bytes = after["quests/tower.sch"];
        EXPECT_EQ(withoutStamps(bytes), withoutStamps(composeSchemaBytes(expected, kWorkedStamp)));
        const std::string& old = m_before["quests/tower.sch"];
        const std::size_t german = old.find("lang_german");
        const std::size_t italian = old.find("lang_italian");
        EXPECT_EQ(bytes.substr(0, german), old.substr(0, german));
        EXPECT_EQ(bytes.substr(bytes.find("lang_italian")), old.substr(italian));
        EXPECT_FALSE(contains(bytes.substr(german, 40), "2005-03-14 14:05:09")) << bytes;
    }
}

// A file that the paths reach by several names (a link, overlapping
// folders) is exported once, and an import applies every translation for it
// to one document and saves it once; two texts for one field are refused.
// The name an export gave a file is its own: another file reached by that
// name through overlapping folders (quests/plain.sch) does not take it.
TEST_F(PoTest, OneFileReachedByManyNamesIsWrittenOnce) {
    std::filesystem::create_symlink("quests/tower.sch", m_dir / "alias.sch");
    writeBytes(m_dir / "quests/plain.sch", m_before["plain.sch"]);
    const std::string po = exported(Language::French, false);
    EXPECT_FALSE(contains(po, "alias.sch")) << po;
    EXPECT_EQ(po.find("tower.sch|title"), po.rfind("tower.sch|title"));
    auto entry = [](const char* context, const char* english, const char* text) {
        return "msgctxt \"" + std::string(context) + "\"\nmsgid \"" + english + "\"\nmsgstr \"" +
               text + "\"\n\n";
    };
    const std::string title = entry("quests/tower.sch|title", "The Tower", "La Tour Noire");
    const std::string body =
        entry("tower.sch|body", "Hello\\\\n<br>\\\\nWorld", "Salut\\\\n<br>\\\\nMonde");
    const struct {
        std::string entries;
        int applied;
        int refused;
        LanguageEntry french;
    } cases[] = {
        {title + body + entry("alias.sch|title", "The Tower", "La Tour Noire") +
             entry("plain.sch|body", "Yes", "Oui"),
         3,
         0,
         {u"La Tour Noire", u"Salut\\n<br>\\nMonde"}},
        {title + entry("alias.sch|title", "The Tower", "Une autre tour"), 0, 2,
         tower().entry(Language::French)},
    };
    std::vector<PathProblem> problems;
    const auto files = findSchemas({m_dir.path(), m_dir / "quests"}, problems);
    for (const auto& c : cases) {
        writeBytes(m_dir / "quests/tower.sch", m_before["quests/tower.sch"]);
        writeBytes(m_dir / "in.po", poHeader("Language: fr\\n") + c.entries);
        std::ostringstream out;
        const ImportCounts counts = importPo(m_dir / "in.po", files, false, out);
        EXPECT_EQ(counts.applied, c.applied) << out.str();
        EXPECT_EQ(counts.refused, c.refused) << out.str();
        EXPECT_EQ(loadDocument(m_dir / "quests/tower.sch")->entry(Language::French), c.french);
    }
    EXPECT_EQ(loadDocument(m_dir / "plain.sch")->entry(Language::French).body, u"Oui");
    EXPECT_EQ(readBytes(m_dir / "quests/plain.sch"), m_before["plain.sch"]);
}

// Import writes the translated record with the font that record named,
// not the one a later record names.
TEST_F(PoTest, ARewrittenRecordKeepsItsOwnFont) {
    std::string bytes = m_before["quests/tower.sch"];
    const std::size_t german = bytes.find("Papyrus14", bytes.find("lang_german"));
    bytes.replace(german, 9, "SmallFont10");
    writeBytes(m_dir / "quests/tower.sch", bytes);
    import(poHeader("Language: de\\n") +
           "msgctxt \"quests/tower.sch|title\"\nmsgid \"The Tower\"\nmsgstr \"Der Turm\"\n");
    bytes = readBytes(m_dir / "quests/tower.sch");
    EXPECT_TRUE(contains(bytes.substr(bytes.find("lang_german"), 60), "<font=SmallFont10>"))
        << m_out << bytes;
}

// A save made while the import runs (here: while it flushes its new file)
// is read again and kept, the translations applied on top; a file that
// keeps changing is left to its last writer.
TEST_F(PoTest, ASaveMadeDuringTheImportIsNeverOverwritten) {
    const std::string po = poHeader("Language: fr\\n") +
                           "msgctxt \"quests/tower.sch|title\"\nmsgid \"The Tower\"\n"
                           "msgstr \"La Tour Noire\"\n";
    SchemaDocument meanwhile = tower();
    meanwhile.entry(Language::German).body = u"saved meanwhile";
    for (const int changes : {1, 3}) {
        writeBytes(m_dir / "quests/tower.sch", m_before["quests/tower.sch"]);
        int left = changes;
        setFsyncFault([&](int) -> std::optional<int> {
            if (left > 0) {
                --left;
                meanwhile.entry(Language::German).title = fromUtf8("#" + std::to_string(left));
                writeBytes(m_dir / "quests/tower.sch", composeSchemaBytes(meanwhile, kWorkedStamp));
            }
            return std::nullopt;
        });
        const ImportCounts counts = import(po);
        setFsyncFault(nullptr);
        SchemaDocument expected = meanwhile;
        if (changes == 1) {
            expected.entry(Language::French).title = u"La Tour Noire";
        }
        EXPECT_EQ(withoutStamps(readBytes(m_dir / "quests/tower.sch")),
                  withoutStamps(composeSchemaBytes(expected, kWorkedStamp)));
        EXPECT_EQ(counts.applied, changes == 1 ? 1 : 0) << m_out;
        EXPECT_TRUE(contains(m_out, changes == 1 ? "read again" : "changed on disk each of the 3"))
            << m_out;
    }
}

// File names that are not UTF-8, or hold a backslash or a line break,
// travel in escaped contexts that msgfmt accepts and import reads back.
TEST_F(PoTest, AnyFileNameTravelsThereAndBack) {
    TempDir dir;
    const std::string names[] = {"caf\xE9.sch", "back\\x41slash.sch", "two\nlines.sch"};
    for (const std::string& name : names) {
        writeBytes(dir / name, composeSchemaBytes(plain(), kWorkedStamp));
    }
    std::vector<PathProblem> problems;
    const auto found = findSchemas({dir.path()}, problems);
    std::ostringstream out;
    ASSERT_TRUE(exportPo(found, Language::French, false, dir / "fr.po", out, out)) << out.str();
    std::string po = readBytes(dir / "fr.po");
    EXPECT_TRUE(contains(po, "msgctxt \"caf\\\\xE9.sch|body\"")) << po;
    if (std::system("command -v msgfmt >/dev/null") == 0) {
        EXPECT_EQ(std::system(("msgfmt --check -o /dev/null " + (dir / "fr.po")).c_str()), 0);
    }
    po = std::regex_replace(po, std::regex("(msgid \"Yes\"\n)msgstr \"\""), "$1msgstr \"Oui\"");
    writeBytes(dir / "fr.po", po);
    const ImportCounts counts = importPo(dir / "fr.po", found, false, out);
    EXPECT_EQ(counts.applied, 3) << out.str();
    for (const std::string& name : names) {
        EXPECT_EQ(loadDocument(dir / name)->entry(Language::French).body, u"Oui") << name;
    }
}

TEST_F(PoTest, RefusesBadEntriesAndAppliesTheRest) {
    struct Case {
        std::string entry;
        std::string says;
        int refused = 1;
    };
    const Case cases[] = {
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
         "refused: the markers differ from the English: extra \u21b5 (a line break)\n"},
        {"msgctxt \"quests/tower.sch|title\"\nmsgid \"The Tower\"\nmsgstr \"La\\nTour\"",
         "quests/tower.sch|title: refused: a title is one line, and this translation holds a "
         "line break"},
        {"msgctxt \"quests/tower.sch|title\"\nmsgid \"The Tower\"\nmsgid_plural \"Towers\"\n"
         "msgstr[0] \"La Tour\"\nmsgstr[1] \"Les Tours\"",
         "quests/tower.sch|title: refused: an entry with plural forms"},

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
    std::vector<Case> all(std::begin(cases), std::end(cases));
#if !defined(__SANITIZE_ADDRESS__)  // libgettextpo reads a long string slowly there
    all.push_back({"msgctxt \"quests/tower.sch|title\"\nmsgid \"The Tower\"\nmsgstr \"" +
                       std::string(kMaxTitleLength + 1, 'T') + "\"",
                   "quests/tower.sch|title: refused: longer than the window's limit of 4000000"});
#endif
    for (const auto& c : all) {
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
