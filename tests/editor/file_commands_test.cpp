#include <gtest/gtest.h>

#include <random>

#include "editor/texts.hpp"
#include "markup/markers.hpp"
#include "markup/renderer.hpp"
#include "schema/windows1252.hpp"
#include "support/fakes.hpp"
#include "support/test_support.hpp"

namespace lorekeep::editor {
namespace {

using testing::FakeWindow;
using testing::RecordingMessageBox;
using testing::T;
using testing::TempDir;
using Shown = std::vector<RecordingMessageBox::Shown>;

const Shown kLoadFailed{{Text(texts::kLoadFailed), Text(texts::kProgramTitle)}};

// Something in every control a load may change, so that what a failed load
// leaves alone can be seen.
void fill(FakeWindow& w) {
    for (int i = 0; i < kLanguageCount; ++i) {
        w.boxes[i].replaceText(u"before " + Text(kLanguages[i].tabCaption));
        w.titles[i].value = u"title " + Text(kLanguages[i].tabCaption);
    }
    w.font.setCurrentEntry(3);
}

TEST(FileCommands, FolderAndNameMustBothBeGiven) {
    const std::pair<const char*, const char*> cases[] = {{"", "name"}, {"folder", ""}, {"", ""}};
    for (const auto& [folder, name] : cases) {
        for (bool save : {true, false}) {
            FakeWindow w;
            fill(w);
            const SchemaDocument before = w.document();
            w.folder.value = T(folder);
            w.name.value = T(name);
            save ? w.editor.saveClicked() : w.editor.loadClicked();
            EXPECT_EQ(w.messages.shown,
                      (Shown{{Text(texts::kFolderOrNameMissing), Text(texts::kProgramTitle)}}));
            EXPECT_EQ(w.document(), before);
        }
    }
    // Spaces are something: the check passes, and the save finds no such folder.
    FakeWindow w;
    w.folder.value = u"   ";
    w.name.value = u"name";
    w.editor.saveClicked();
    EXPECT_EQ(w.messages.shown, (Shown{{Text(texts::kSaveFailed), Text(texts::kProgramTitle)}}));
}

TEST(FileCommands, LocationDialogFillsFolderAndName) {
    const std::array<const char*, 3> cases[] = {
        {"/home/me/Schemas/intro.sch", "/home/me/Schemas/", "intro"},
        {"/d/notes.txt", "/d/", "notes"},
        {"/d/archive.backup", "/d/", "archive.ba"},  // four characters go, whatever they are
        {"/d/.sch", "/d/", ""},
        {"/d/ab", "/d/", "kept"},  // too short to lose four: the name box keeps its text
    };
    for (const auto& [path, folder, name] : cases) {
        FakeWindow w;
        w.name.value = u"kept";
        w.dialog.nextPath = T(path);
        w.editor.locationClicked();
        EXPECT_EQ(w.folder.value, T(folder)) << path;
        EXPECT_EQ(w.name.value, T(name)) << path;
        EXPECT_EQ(w.dialog.suffix, u"sch");
        EXPECT_EQ(w.dialog.title, u"Choose a schema location and name");
        EXPECT_EQ(w.dialog.filter, u"Schemas (*.sch)|*.sch");
        EXPECT_TRUE(w.dialog.path.empty()) << "the chosen path is emptied after a choice";
        // Cancelling afterwards changes nothing.
        w.dialog.nextPath.clear();
        w.editor.locationClicked();
        EXPECT_EQ(w.folder.value, T(folder));
        EXPECT_EQ(w.dialog.shown, 2);
    }
}

TEST(FileCommands, LoadAppliesLanguageByLanguageUntilAFailure) {
    TempDir dir;
    testing::writeBytes(dir / "s.sch",
                        "V\r\nT\r\nN\r\nlang_english 2005-03-14 14:05:09 "
                        "\"<font=papyrus20><title=One>first\\n<br>\\nline\"\r\n"
                        "lang_french 2005-03-14 14:05:09 \"second\"\r\n");
    FakeWindow w;
    fill(w);
    w.editor.load(u"s", T(dir.path()));
    EXPECT_EQ(w.messages.shown, kLoadFailed);
    EXPECT_EQ(w.boxes[0].text, u"first\\n<br>\\nline");
    EXPECT_EQ(w.titles[0].value, u"One");
    EXPECT_EQ(w.font.selected, 1);
    EXPECT_EQ(w.boxes[1].text, u"second");
    EXPECT_EQ(w.titles[1].value, u"title French");
    EXPECT_EQ(w.boxes[2].text, u"before German");
    EXPECT_EQ(w.boxes[3].text, u"before Italian");
    EXPECT_EQ(w.boxes[4].preview->text, u"first\rline");  // refreshed with its editor
}

TEST(FileCommands, FailedLoadsChangeNothing) {
    TempDir dir;
    testing::writeBytes(dir / "header.sch", "VERSION 2.0\r\nTextEntry\r\nx\r\n");
    std::filesystem::create_directory(dir / "folder.sch");
    std::string huge = "V\r\nT\r\nN\r\n";
    huge += "lang_english 2005-03-14 14:05:09 \"" + std::string(kMaxBodyLength, 'x') + "\"\r\n";
    for (const char* key : {"lang_french ", "lang_german ", "lang_italian "}) {
        huge += std::string(key) + "2005-03-14 14:05:09 \"y\"\r\n";
    }
    testing::writeBytes(dir / "huge.sch", huge);
    for (const char* name : {"missing", "folder", "header", "huge"}) {
        FakeWindow w;
        fill(w);
        const SchemaDocument before = w.document();
        w.editor.load(T(name), T(dir.path()));
        EXPECT_EQ(w.messages.shown, kLoadFailed) << name;
        EXPECT_EQ(w.document(), before) << name;
        EXPECT_EQ(w.font.selected, 3) << name;
    }
}

// Documents of any text the format can carry (no comma, double quote, ">" or
// line break), saved and loaded back, show exactly what was saved.
TEST(FileCommands, SavedDocumentsLoadBackUnchanged) {
    std::mt19937 random(20261122);
    Text codePage;
    for (int byte = 0; byte < 256; ++byte) {
        const char b = static_cast<char>(byte);
        codePage += decodeWindows1252(std::string_view(&b, 1));
    }
    auto randomText = [&](std::size_t maxLength) {
        static const std::u16string_view kPieces[] = {
            u"\\n<br>\\n", u"\\n<jc>\\n", u"\\n<dc=1,2,3", u"\\n",  u"\\",           u"<",
            u"=",          u" ",          u"title",        u"font", u"lang_english "};
        Text text;
        const std::size_t length = random() % (maxLength + 1);
        while (text.size() < length) {
            text += random() % 4 == 0 ? Text(kPieces[random() % std::size(kPieces)])
                                      : Text(1, codePage[random() % codePage.size()]);
        }
        std::erase_if(text, [](char16_t c) { return Text(u",\">\r\n").find(c) != Text::npos; });
        return text;
    };
    TempDir dir;
    for (int n = 0; n < 1000; ++n) {
        FakeWindow w;
        for (int i = 0; i < kLanguageCount; ++i) {
            w.titles[i].value = randomText(random() % 3 == 0 ? 0 : 20);
            Text body = randomText(random() % 5 == 0 ? 0 : 200);
            // An empty title writes no tag, so a body opening with one is read as one.
            if (w.titles[i].value.empty() && body.starts_with(markup::kTitleOpen)) {
                body.insert(0, u"x");
            }
            w.boxes[i].replaceText(body);
        }
        const int entry = static_cast<int>(random() % 7);
        entry < 5 ? w.font.setCurrentEntry(entry) : w.font.setEditText(randomText(12));
        w.folder.value = T(dir.path());
        w.name.value = u"round";
        w.editor.saveClicked();
        ASSERT_TRUE(w.messages.shown.empty());
        ASSERT_EQ(w.clock.readings, 1) << "one stamp for all four records";

        FakeWindow loaded;
        fill(loaded);
        loaded.folder.value = T(dir.path());
        loaded.name.value = u"round";
        loaded.editor.loadClicked();
        ASSERT_TRUE(loaded.messages.shown.empty()) << "case " << n;
        ASSERT_EQ(loaded.document(), w.document()) << "case " << n;
        for (int i = 0; i < kLanguageCount; ++i) {
            ASSERT_EQ(loaded.boxes[4 + i].preview, markup::renderPreview(w.boxes[i].text));
        }
    }
}

}  // namespace
}  // namespace lorekeep::editor
