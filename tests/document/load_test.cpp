#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <random>

#include "document/messages.hpp"
#include "document/save.hpp"
#include "document/schema_writer.hpp"
#include "document/windows1252.hpp"
#include "markup/markers.hpp"
#include "markup/mod_schema_parse.hpp"
#include "support/fake_window.hpp"
#include "support/temp_dir.hpp"
#include "support/test_text.hpp"

namespace lorekeep {
namespace {

using testing::DataPath;
using testing::FakeWindow;
using testing::RecordingMessageBox;
using testing::T;
using testing::TempDir;

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

Text AsciiLower(Text text) {
    for (char16_t& c : text) {
        if (c >= u'A' && c <= u'Z') {
            c = static_cast<char16_t>(c + 32);
        }
    }
    return text;
}

const std::vector<RecordingMessageBox::Shown> kOneLoadFailure{
    {Text(texts::kLoadFailed), Text(texts::kProgramTitle)}};

// Puts something in every box that a load may change, so that a failed
// load can be seen to leave it alone.
void FillWindow(FakeWindow& w) {
    for (int i = 0; i < kLanguageCount; ++i) {
        w.rtbText[i].SetPlainText(u"before " + Text(InfoOf(LanguageAt(i)).tabCaption));
        w.txtTitle[i].text = u"title " + Text(InfoOf(LanguageAt(i)).tabCaption);
    }
    w.cboFont.SelectEntry(3);
}

class LoadTest : public ::testing::Test {
  protected:
    void LoadFile(const std::string& name) { w_.commands.Load(T(name), T(dir_.path())); }

    TempDir dir_;
    FakeWindow w_;
};

TEST_F(LoadTest, TheWorkedExampleComesBackAsSaved) {
    WriteBytes(dir_ / "tower.sch", testing::ReadBytes(DataPath("worked_example.sch")));
    LoadFile("tower");
    EXPECT_TRUE(w_.messages.shown.empty());
    EXPECT_EQ(w_.rtbText[0].PlainText(), uR"(Hello\n<br>\nWorld)");
    EXPECT_EQ(w_.txtTitle[0].text, u"The Tower");
    EXPECT_EQ(w_.txtTitle[3].text, u"La Torre");
    EXPECT_EQ(w_.rtbText[3].PlainText(), u"Ciao");
    EXPECT_EQ(w_.cboFont.selected, 0);
    // Every loaded editor refreshed its preview.
    EXPECT_EQ(w_.rtbText[4].PlainText(), u"Hello\rWorld");
    EXPECT_EQ(w_.rtbText[7].PlainText(), u"Ciao");
}

TEST_F(LoadTest, LineEndsOfAnyKindReadAlike) {
    const std::string crlf = testing::ReadBytes(DataPath("worked_example.sch"));
    std::string cr, lf;
    for (std::size_t k = 0; k < crlf.size(); ++k) {
        if (crlf[k] == '\r') {
            cr += '\r';
            lf += '\n';
            ++k;
        } else {
            cr += crlf[k];
            lf += crlf[k];
        }
    }
    WriteBytes(dir_ / "crlf.sch", crlf);
    WriteBytes(dir_ / "cr.sch", cr);
    WriteBytes(dir_ / "lf.sch", lf);
    LoadFile("crlf");
    const SchemaDocument expected = w_.Document();
    for (const char* name : {"cr", "lf"}) {
        FakeWindow other;
        other.commands.Load(T(name), T(dir_.path()));
        EXPECT_TRUE(other.messages.shown.empty()) << name;
        EXPECT_EQ(other.Document(), expected) << name;
    }
}

TEST_F(LoadTest, FailuresShowOneMessageAndChangeNothing) {
    std::mt19937 random(7);
    std::string noise(4096, '\0');
    for (char& c : noise) {
        c = static_cast<char>(random());
    }
    const std::pair<const char*, std::function<void(const TempDir&)>> cases[] = {
        {"missing file", [](const TempDir&) {}},
        {"empty file", [](const TempDir& d) { WriteBytes(d / "s.sch", ""); }},
        {"directory", [](const TempDir& d) { std::filesystem::create_directory(d / "s.sch"); }},
        {"random bytes", [&](const TempDir& d) { WriteBytes(d / "s.sch", noise); }},
        {"header only",
         [](const TempDir& d) { WriteBytes(d / "s.sch", "VERSION 2.0\r\nTextEntry\r\nx\r\n"); }},
        {"comma in the name",
         [](const TempDir& d) {
             WriteBytes(d / "s.sch",
                        "VERSION 2.0\r\nTextEntry\r\na, b\r\nlang_english 2005-03-14 "
                        "14:05:09 \"x\"\r\n");
         }},
        {"five records",
         [](const TempDir& d) {
             std::string file = "V\r\nT\r\nN\r\n";
             for (int k = 0; k < 5; ++k) {
                 file += "lang_english 2005-03-14 14:05:09 \"x\"\r\n";
             }
             WriteBytes(d / "s.sch", file);
         }},
    };
    for (const auto& [what, arrange] : cases) {
        TempDir dir;
        arrange(dir);
        FakeWindow w;
        FillWindow(w);
        const SchemaDocument before = w.Document();
        w.commands.Load(u"s", T(dir.path()));
        EXPECT_EQ(w.messages.shown, kOneLoadFailure) << what;
        EXPECT_EQ(w.Document(), before) << what;
        EXPECT_EQ(w.cboFont.selected, 3) << what;
    }
}

TEST_F(LoadTest, UnreadableFileFails) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root reads files whatever their permission bits say";
    }
    WriteBytes(dir_ / "s.sch", testing::ReadBytes(DataPath("worked_example.sch")));
    chmod((dir_ / "s.sch").c_str(), 0);
    FillWindow(w_);
    const SchemaDocument before = w_.Document();
    LoadFile("s");
    EXPECT_EQ(w_.messages.shown, kOneLoadFailure);
    EXPECT_EQ(w_.Document(), before);
}

TEST_F(LoadTest, TwoRecordsLoadEnglishAndFrenchThenFail) {
    WriteBytes(dir_ / "s.sch",
               "VERSION 2.0\r\nTextEntry\r\ns\r\n"
               "lang_english 2005-03-14 14:05:09 \"<font=papyrus20><title=One>first\"\r\n"
               "lang_french 2005-03-14 14:05:09 \"second\"\r\n");
    FillWindow(w_);
    LoadFile("s");
    EXPECT_EQ(w_.messages.shown, kOneLoadFailure);
    EXPECT_EQ(w_.rtbText[0].PlainText(), u"first");
    EXPECT_EQ(w_.txtTitle[0].text, u"One");
    EXPECT_EQ(w_.rtbText[1].PlainText(), u"second");
    EXPECT_EQ(w_.txtTitle[1].text, u"title French");
    EXPECT_EQ(w_.cboFont.selected, 1);
    EXPECT_EQ(w_.rtbText[2].PlainText(), u"before German");
    EXPECT_EQ(w_.rtbText[3].PlainText(), u"before Italian");
    EXPECT_EQ(w_.rtbText[4].PlainText(), u"first");  // refreshed with its editor
}

TEST_F(LoadTest, CommasAndContinuationLinesJoinTheRecord) {
    WriteBytes(dir_ / "s.sch",
               "VERSION 2.0\r\nTextEntry\r\ns\r\n"
               "lang_english 2005-03-14 14:05:09 \"Hello, World\r\n  again\"\r\n"
               "lang_french 2005-03-14 14:05:09 \"x\"\r\n"
               "lang_german 2005-03-14 14:05:09 \"y\"\r\n"
               "lang_italian 2005-03-14 14:05:09 \"z\"\r\n"
               "tail, end\r\n");
    LoadFile("s");
    EXPECT_TRUE(w_.messages.shown.empty());
    EXPECT_EQ(w_.rtbText[0].PlainText(), u"HelloWorldagain");
    EXPECT_EQ(w_.rtbText[3].PlainText(), u"z\"tailen");
}

TEST_F(LoadTest, BodiesBeyondWhatTheWindowCanShowAreRefusedWhole) {
    // A body is one paragraph of a text box: the window takes none longer
    // than it can lay out, and refuses such a file before showing anything.
    std::string file = "V\r\nT\r\nN\r\n";
    file += "lang_english 2005-03-14 14:05:09 \"" + std::string(kMaxBodyLength, 'x') + "\"\r\n";
    for (const char* key : {"lang_french ", "lang_german ", "lang_italian "}) {
        file += std::string(key) + "2005-03-14 14:05:09 \"y\"\r\n";
    }
    WriteBytes(dir_ / "huge.sch", file);
    FillWindow(w_);
    const SchemaDocument before = w_.Document();
    LoadFile("huge");
    EXPECT_EQ(w_.messages.shown, kOneLoadFailure);
    EXPECT_EQ(w_.Document(), before);

    // Just within the limit, the same file loads.
    file.erase(file.find('x'), 100);
    WriteBytes(dir_ / "large.sch", file);
    FakeWindow w;
    w.commands.Load(u"large", T(dir_.path()));
    EXPECT_TRUE(w.messages.shown.empty());
    EXPECT_EQ(w.rtbText[0].PlainText().size(), kMaxBodyLength - 100);
}

// Documents of any text the format can carry (no comma, double quote, ">" or
// line break), saved and loaded back, show exactly what was saved.
class RoundTrip : public ::testing::Test {
  protected:
    Text RandomText(std::size_t maxLength) {
        static const std::u16string_view kPieces[] = {
            u"\\n<br>\\n", u"\\n<jc>\\n", u"\\n<dc=1,2,3", u"\\n",  u"\\",           u"<",
            u"=",          u" ",          u"title",        u"font", u"lang_english "};
        std::uniform_int_distribution<std::size_t> length(0, maxLength);
        Text text;
        const std::size_t n = length(random_);
        while (text.size() < n) {
            if (random_() % 4 == 0) {
                text += kPieces[random_() % std::size(kPieces)];
            } else {
                text.push_back(RandomCharacter());
            }
        }
        // The format cannot carry these characters; nothing else is left out.
        std::erase_if(text, [](char16_t c) {
            return c == u',' || c == u'"' || c == u'>' || c == u'\r' || c == u'\n';
        });
        return text;
    }

    char16_t RandomCharacter() {
        // Any character that Windows-1252 represents.
        static const std::u16string kCodePage = [] {
            Text all;
            for (int byte = 0; byte < 256; ++byte) {
                const char b = static_cast<char>(byte);
                all += DecodeWindows1252(std::string_view(&b, 1));
            }
            return all;
        }();
        return kCodePage[random_() % kCodePage.size()];
    }

    Text RandomFont() {
        static const std::u16string_view kFonts[] = {u"Papyrus14", u"papyrus20", u"SMALLFONT10",
                                                     u"MediumFont14", u"mediumfont16"};
        if (random_() % 2 == 0) {
            return Text(kFonts[random_() % std::size(kFonts)]);
        }
        return RandomText(12);
    }

    std::mt19937 random_{20261122};
};

TEST_F(RoundTrip, SavedDocumentsLoadBackUnchanged) {
    TempDir dir;
    for (int n = 0; n < 2000; ++n) {
        SchemaDocument doc;
        for (auto& entry : doc.entries) {
            entry.title = RandomText(random_() % 3 == 0 ? 0 : 20);
            entry.body = RandomText(random_() % 5 == 0 ? 0 : 200);
            // An empty title writes no tag, so a body opening with a title tag
            // of its own would be read as one.
            if (entry.title.empty() && entry.body.starts_with(markup::kTitleOpen)) {
                entry.body.insert(0, u"x");
            }
        }
        doc.font = RandomFont();

        FakeWindow w;
        FillWindow(w);
        w.cboFont.SetCurrentText(doc.font);
        for (int i = 0; i < kLanguageCount; ++i) {
            w.txtTitle[i].text = doc.entries[i].title;
            w.rtbText[i].SetPlainText(doc.entries[i].body);
        }
        w.commands.Save(u"round", T(dir.path()));
        ASSERT_TRUE(w.messages.shown.empty());

        FakeWindow loaded;
        FillWindow(loaded);
        loaded.commands.Load(u"round", T(dir.path()));
        ASSERT_TRUE(loaded.messages.shown.empty()) << "case " << n;
        SchemaDocument expected = doc;
        // A listed font comes back in the list's own letter case.
        for (const Text& entry : loaded.cboFont.entries) {
            if (AsciiLower(entry) == AsciiLower(doc.font)) {
                expected.font = entry;
            }
        }
        ASSERT_EQ(loaded.Document(), expected) << "case " << n;
    }
}

TEST_F(RoundTrip, TheRulesLayoutLoadsTheSameWithOrWithoutTheWriterLayout) {
    TempDir dir;
    for (int n = 0; n < 1000; ++n) {
        std::string file = "VERSION 2.0\r\nTextEntry\r\nrules\r\n";
        for (const char* key : {"lang_english ", "lang_french ", "lang_german ", "lang_italian "}) {
            Text rest;
            if (random_() % 2 == 0) {
                rest += u"<font=" + RandomFont() + u">";
            }
            if (random_() % 2 == 0) {
                rest += u"<title=" + RandomText(10) + u">";
            }
            rest += RandomText(60) + u"\"";
            if (rest.starts_with(markup::kFontOpen)) {
                continue;  // that opening is the writer's own layout
            }
            file += key + std::string("2005-03-14 14:05:09 \"") + EncodeWindows1252(rest) + "\r\n";
        }
        WriteBytes(dir / "rules.sch", file);
        FakeWindow strict, wide;
        FillWindow(strict);
        FillWindow(wide);
        strict.commands.readerOptions.acceptWriterLayout = false;
        strict.commands.Load(u"rules", T(dir.path()));
        wide.commands.Load(u"rules", T(dir.path()));
        ASSERT_EQ(wide.Document(), strict.Document()) << "case " << n;
        ASSERT_EQ(wide.messages.shown, strict.messages.shown) << "case " << n;
        ASSERT_EQ(wide.cboFont.selected, strict.cboFont.selected) << "case " << n;
    }
}

// The file buttons and the location dialog.
class FileCommands : public ::testing::Test {
  protected:
    FakeWindow w_;
    TempDir dir_;
};

TEST_F(FileCommands, FolderAndNameMustBothBeGiven) {
    const std::pair<const char*, const char*> cases[] = {{"", "name"}, {"folder", ""}, {"", ""}};
    for (const auto& [folder, name] : cases) {
        for (bool save : {true, false}) {
            FakeWindow w;
            FillWindow(w);
            const SchemaDocument before = w.Document();
            w.txtLoc.text = T(folder);
            w.txtName.text = T(name);
            save ? w.commands.cmdSave_Click() : w.commands.cmdLoad_Click();
            EXPECT_EQ(w.messages.shown,
                      (std::vector<RecordingMessageBox::Shown>{
                          {Text(texts::kFolderOrNameMissing), Text(texts::kProgramTitle)}}));
            EXPECT_EQ(w.Document(), before);
        }
    }
}

TEST_F(FileCommands, SpacesAreSomethingAndReachSave) {
    w_.txtLoc.text = u"   ";
    w_.txtName.text = u"name";
    w_.commands.cmdSave_Click();
    // The check passes; Save then finds no such folder.
    EXPECT_EQ(w_.messages.shown, (std::vector<RecordingMessageBox::Shown>{
                                     {Text(texts::kSaveFailed), Text(texts::kProgramTitle)}}));
}

TEST_F(FileCommands, LocationDialogFillsFolderAndName) {
    struct Case {
        const char* name;
        const char* path;
        const char* fileName;
        const char* folder;
        const char* schemaName;
    };
    const Case cases[] = {
        {"existing file", "/home/me/Schemas/intro.sch", "intro.sch", "/home/me/Schemas/", "intro"},
        {"other extension", "/d/notes.txt", "notes.txt", "/d/", "notes"},
        {"long extension loses four characters", "/d/archive.backup", "archive.backup", "/d/",
         "archive.ba"},
        {"exactly four characters", "/d/.sch", ".sch", "/d/", ""},
        {"short name keeps the name box", "/d/ab", "ab", "/d/", "kept"},
    };
    for (const Case& c : cases) {
        FakeWindow w;
        w.txtName.text = u"kept";
        w.cd1.nextPath = T(c.path);
        w.cd1.nextName = T(c.fileName);
        w.commands.cmdLoc_Click();
        EXPECT_EQ(w.txtLoc.text, T(c.folder)) << c.name;
        EXPECT_EQ(w.txtName.text, T(c.schemaName)) << c.name;
        EXPECT_EQ(w.cd1.extension, u"sch");
        EXPECT_EQ(w.cd1.title, u"Choose a schema location and name");
        EXPECT_EQ(w.cd1.filterDescription, u"Schemas (*.sch)");
        EXPECT_EQ(w.cd1.filterPattern, u"*.sch");
        EXPECT_TRUE(w.cd1.path.empty()) << "the chosen path is emptied after a choice";
    }
}

TEST_F(FileCommands, CancelAfterAnEarlierChoiceChangesNothing) {
    w_.cd1.nextPath = u"/d/intro.sch";
    w_.cd1.nextName = u"intro.sch";
    w_.commands.cmdLoc_Click();
    w_.cd1.nextPath.clear();
    w_.cd1.nextName.clear();
    w_.commands.cmdLoc_Click();
    EXPECT_EQ(w_.cd1.shown, 2);
    EXPECT_EQ(w_.txtLoc.text, u"/d/");
    EXPECT_EQ(w_.txtName.text, u"intro");
}

}  // namespace
}  // namespace lorekeep
