#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "editor/texts.hpp"
#include "markup/renderer.hpp"
#include "schema/schema_writer.hpp"
#include "schema/windows1252.hpp"
#include "support/fakes.hpp"
#include "support/test_support.hpp"

namespace lorekeep::editor {
namespace {

using namespace testing;

// The one message a command shows, if any.
Text shown(const FakeWindow& w) {
    EXPECT_LE(w.messages.shown.size(), 1u);
    return w.messages.shown.empty() ? Text() : w.messages.shown[0].text;
}

// Something in every control a load may change, so that what a failed load
// leaves alone can be seen.
void fill(FakeWindow& w) {
    for (int i = 0; i < kLanguageCount; ++i) {
        w.boxes[i].replaceText(u"before " + Text(kLanguages[i].tabCaption));
        w.titles[i].value = u"title " + Text(kLanguages[i].tabCaption);
    }
    w.font.setCurrentEntry(3);
}

TEST(FileCommands, LocationDialogFillsFolderAndName) {
    const std::array<const char*, 3> cases[] = {
        {"/home/me/Schemas/intro.sch", "/home/me/Schemas/", "intro"},
        {"/d/archive.backup", "/d/", "archive.ba"},  // four characters go, whatever they are
        {"/d/.sch", "/d/", ""},
        {"/d/ab", "/d/", "kept"},  // too short to lose four: the name box keeps its text
    };
    for (const auto& [path, folder, name] : cases) {
        FakeWindow w;
        w.name.value = u"kept";
        w.dialog.nextPath = fromUtf8(path);
        w.editor.locationClicked();
        // Cancelling afterwards changes nothing.
        w.dialog.nextPath.clear();
        w.editor.locationClicked();
        EXPECT_EQ(w.folder.value + u"|" + w.name.value, fromUtf8(folder) + u"|" + fromUtf8(name));
        EXPECT_EQ(w.dialog.shown, 2);
    }
}

TEST(FileCommands, LoadAppliesLanguageByLanguageUntilAFailure) {
    TempDir dir;
    writeBytes(dir / "s.sch",
               "V\r\nT\r\nN\r\nlang_english 2005-03-14 14:05:09 "
               "\"<font=papyrus20><title=One>first\\n<br>\\nline\"\r\n"
               "lang_french 2005-03-14 14:05:09 \"second\"\r\n"
               "lang_german 2005-03-14 14:05:09 \"<font=smallfont10><title=Three");
    FakeWindow w;
    fill(w);
    w.editor.load(u"s", fromUtf8(dir.path()));
    EXPECT_EQ(shown(w), texts::kLoadFailed);
    SchemaDocument expected = w.document();
    expected.entries[0] = {u"One", u"first\\n<br>\\nline"};
    expected.entries[1] = {u"title French", u"second"};
    // German sets its font and title, then has no body left: the load ends there.
    expected.entries[2] = {u"Three", u"before German"};
    expected.entries[3] = {u"title Italian", u"before Italian"};
    expected.font = u"SmallFont10";
    EXPECT_EQ(w.document(), expected);
    EXPECT_EQ(w.font.selected, 2);
    EXPECT_EQ(w.boxes[4].preview->text, u"first\rline");  // refreshed with its editor
}

// A command refused for want of a folder or a name, or on its file, shows
// one message and changes nothing the window shows.
TEST(FileCommands, RefusedCommandsChangeNothing) {
    TempDir dir;
    writeBytes(dir / "header.sch", "VERSION 2.0\r\nTextEntry\r\nx\r\n");
    std::filesystem::create_directory(dir / "folder.sch");
    std::string huge = "V\r\nT\r\nN\r\nlang_english 2005-03-14 14:05:09 \"";
    huge += std::string(kMaxBodyLength + 1, 'x') + "\"\r\n";  // one beyond the editor's limit
    for (const char* key : {"lang_french ", "lang_german ", "lang_italian "}) {
        huge += std::string(key) + "2005-03-14 14:05:09 \"y\"\r\n";
    }
    writeBytes(dir / "huge.sch", huge);
    // Spaces are something: the check passes, and the folder is not found.
    // The files are only loaded: a save could write over them.
    const std::string d = dir.path();
    const std::pair<std::string, const char*> cases[] = {
        {"", "n"},      {"folder", ""}, {"", ""},      {"  ", "n"},
        {d, "missing"}, {d, "folder"},  {d, "header"}, {d, "huge"}};
    for (const auto& [folder, name] : cases) {
        for (bool save : {true, false}) {
            if (save && folder == d) {
                continue;
            }
            FakeWindow w;
            fill(w);
            const SchemaDocument before = w.document();
            w.folder.value = fromUtf8(folder);
            w.name.value = fromUtf8(name);
            save ? w.editor.saveClicked() : w.editor.loadClicked();
            const bool given = !folder.empty() && *name != '\0';
            ASSERT_EQ(w.messages.shown.size(), 1u) << name;
            EXPECT_EQ(w.messages.shown[0].text,
                      given ? (save ? texts::kSaveFailed : texts::kLoadFailed)
                            : texts::kFolderOrNameMissing);
            EXPECT_EQ(w.messages.shown[0].title, texts::kProgramTitle);
            // Why, on one line of its own beside the message box.
            const std::string why = w.diagnostics.str();
            EXPECT_EQ(why.starts_with(save ? "lorekeep: cannot save " + folder + "/" + name
                                           : "lorekeep: cannot load " + folder + "/" + name),
                      given)
                << why;
            EXPECT_EQ(std::ranges::count(why, '\n'), given ? 1 : 0) << why;
            EXPECT_EQ(w.document(), before) << name;
            EXPECT_EQ(w.font.selected, 3) << name;
        }
    }
}

// A file opened by its path loads whatever the letter case of its ".sch"
// and saves back to itself; a name of characters that Windows-1252 holds, in
// UTF-8 or as the bytes of a Latin-1 name, is written on the name line.
TEST(FileCommands, OpenedFilesSaveBackUnderTheirOwnName) {
    TempDir dir;
    const std::pair<std::string, std::string> cases[] = {
        {"TOWER.SCH", "TOWER"}, {"été.sch", "\xE9t\xE9"}, {"\xE9t\xE9.Sch", "\xE9t\xE9"}};
    for (const auto& [file, nameLine] : cases) {
        writeBytes(dir / file, composeSchemaBytes(workedExample(), kWorkedStamp));
        FakeWindow w;
        w.editor.openFile(fromUtf8(dir / file));
        EXPECT_EQ(shown(w), u"");
        EXPECT_EQ(w.titles[0].value, u"The Tower") << file;
        w.editor.saveClicked();
        const std::string saved = readBytes(dir / file);
        EXPECT_EQ(saved.substr(0, saved.find("\r\nlang_")),
                  "VERSION 2.0\r\nTextEntry\r\n" + nameLine);
    }
    EXPECT_EQ(listDirectory(dir.path()).size(), 3u);
    // Where both spellings exist, the one asked for opens.
    SchemaDocument other = workedExample();
    other.entry(Language::English).title = u"Another";
    writeBytes(dir / "TOWER.sch", composeSchemaBytes(other, kWorkedStamp));
    FakeWindow w;
    w.editor.openFile(fromUtf8(dir / "TOWER.SCH"));
    EXPECT_EQ(w.titles[0].value, u"The Tower");
}

// A file far larger than any the window saves is refused without being read:
// a 1 GB file costs less than 50 MB at the peak.
TEST(FileCommands, HugeFilesAreRefusedUnread) {
    TempDir dir;
    { std::ofstream file(dir / "huge.sch"); }
    std::filesystem::resize_file(dir / "huge.sch", 1ull << 30);  // sparse: no disk used
    std::ofstream resetPeak("/proc/self/clear_refs");
    if (!(resetPeak << "5" << std::flush)) {
        GTEST_SKIP() << "cannot reset the peak memory count here";
    }
    const long before = memoryKb("VmRSS");
    FakeWindow w;
    w.editor.load(u"huge", fromUtf8(dir.path()));
    EXPECT_EQ(shown(w), texts::kLoadFailed);
    EXPECT_LT(memoryKb("VmHWM") - before, 50 * 1024);
}

// Fields as long as their boxes hold save and load back whole; a name with a
// line break is refused at save, as its file could never load.
TEST(FileCommands, WhatTheWindowHoldsSavesAndLoadsBack) {
    TempDir dir;
    FakeWindow w;
    w.folder.value = fromUtf8(dir.path());
    w.name.value = u"long";
    w.font.setEditText(Text(kMaxLineLength, u'f'));
    for (int i = 0; i < kLanguageCount; ++i) {
        w.titles[i].value = Text(kMaxTitleLength, u't');
        w.boxes[i].text = Text(kMaxBodyLength - 2, u'b') + u"\n";
    }
    w.editor.saveClicked();
    FakeWindow loaded;
    loaded.editor.load(u"long", w.folder.value);
    EXPECT_EQ(shown(loaded), Text());
    EXPECT_TRUE(loaded.document() == w.document());

    w.name.value = u"two\nlines";
    w.editor.saveClicked();
    EXPECT_EQ(shown(w), texts::kSaveFailed);
    EXPECT_EQ(listDirectory(dir.path()), std::set<std::string>{"long.sch"});
}

// Documents of any text the format can carry, saved and loaded back through
// the buttons, show exactly what was saved: commas, quotes, ">" in bodies,
// markers, real line breaks, empty fields and every character of the code page.
TEST(FileCommands, SavedDocumentsLoadBackExactly) {
    std::mt19937 random(20261122);
    auto randomText = [&](std::size_t maxLength, bool titleOrFont) {
        static const std::u16string_view kPieces[] = {
            u"<",  u">",        u" lang_english ", u", ",           u"\"", u"\r", u"\r\n", u"\n",
            u"\n", u"\n<br>\n", u"\n<dc=1,2,3>\n", u"\n<title=T>\n"};
        Text text;
        for (std::size_t n = random() % (maxLength + 1); text.size() < n;) {
            const char byte = static_cast<char>(0x20 + random() % 0xE0);
            text += random() % 3 == 0 ? Text(kPieces[random() % std::size(kPieces)])
                                      : decodeWindows1252(std::string_view(&byte, 1));
        }
        if (titleOrFont) {  // a ">" ends a title or a font tag
            std::erase(text, u'>');
        }
        return text;
    };
    TempDir dir;
    int carried = 0;
    for (int n = 0; n < 2000; ++n) {
        FakeWindow w, loaded;
        fill(loaded);
        for (int i = 0; i < kLanguageCount; ++i) {
            w.titles[i].value = randomText(random() % 3 == 0 ? 0 : 20, true);
            w.boxes[i].replaceText(randomText(random() % 5 == 0 ? 0 : 200, false));
        }
        const int entry = static_cast<int>(random() % 7);
        entry < 5 ? w.font.setCurrentEntry(entry) : w.font.setEditText(randomText(12, true));
        if (!formatCarries(w.document())) {
            continue;  // a body opening with a title tag under an empty title
        }
        ++carried;
        for (FakeWindow* window : {&w, &loaded}) {
            window->folder.value = fromUtf8(dir.path());
            window->name.value = u"round";
        }
        w.editor.saveClicked();
        loaded.editor.loadClicked();
        ASSERT_EQ(shown(w) + shown(loaded), u"") << "case " << n;
        ASSERT_EQ(w.clock.readings, 1) << "one stamp for all four records";
        ASSERT_EQ(loaded.document(), w.document()) << "case " << n;
        ASSERT_EQ(loaded.font.selected, w.font.selected) << "case " << n;
        for (int i = 0; i < kLanguageCount; ++i) {
            ASSERT_EQ(loaded.boxes[4 + i].preview, markup::renderPreview(w.boxes[i].text));
        }
    }
    EXPECT_GT(carried, 1500);
}

}  // namespace
}  // namespace lorekeep::editor
