#pragma once

#include <functional>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include "editor/schema_editor.hpp"
#include "schema/schema_document.hpp"
#include "support/preview_patch.hpp"

// The window's controls held in memory, wired to the window's behaviour as
// the real window is.
namespace lorekeep::testing {

// Records every message box instead of showing it.
struct RecordingMessageBox final : editor::MessageBox {
    struct Shown {
        Text text;
        Text title;
    };
    void showMessage(TextView text, TextView title) override {
        shown.push_back({Text(text), Text(title)});
    }
    std::vector<Shown> shown;
};

// Always the worked example's stamp; counts its readings, so that a save
// that reads the clock more than once (and might stamp its records
// differently) is caught.
struct CountingClock final : Clock {
    LocalDateTime now() const override {
        ++readings;
        return {2005, 3, 14, 14, 5, 9};
    }
    mutable int readings = 0;
};

// A rich-text box: an editor for the commands and a preview pane.
struct FakeRichTextBox final : editor::EditorBox, editor::PreviewPane {
    Text plainText() const override { return text; }
    void replaceRange(std::size_t start, std::size_t length, TextView value) override {
        text.replace(start, length, value);
        caret = std::min(caret, text.size());
        selected = 0;
        ++replacements;
        if (onChange) {
            onChange(editor::TextChange{start, length, Text(value)});
        }
    }
    void beep() override { ++beeps; }
    std::size_t caretPosition() const override { return caret; }
    std::size_t selectionEnd() const override { return caret + selected; }
    void setCaretPosition(std::size_t at) override {
        caret = std::min(at, text.size());
        selected = 0;
    }
    void select(std::size_t start, std::size_t length) override {
        caret = start;
        selected = length;
    }
    void giveFocus() override { focused = true; }
    void showPreview(const markup::RenderedPreview& value) override { preview = value; }
    // Patched as a real pane is, so that the commands' tests check the
    // patches too.
    void showPreviewChange(const markup::PreviewPatch& patch,
                           const std::function<markup::RenderedPreview()>& whole) override {
        if (!preview) {
            preview = whole();
        } else {
            testing::applyPatch(*preview, patch);
        }
    }

    Text text;
    std::size_t caret = 0;
    std::size_t selected = 0;  // characters selected from the caret on
    bool focused = false;
    int replacements = 0;
    int beeps = 0;
    std::optional<markup::RenderedPreview> preview;  // what the pane last showed
    std::function<void(const editor::TextChange&)> onChange;
};

// A single-line text box or a button: whatever the commands set on it.
struct FakeControl final : editor::TextBox, editor::Button {
    Text text() const override { return value; }
    void setText(TextView text) override { value = Text(text); }
    void setEnabled(bool on) override { enabled = on; }
    void setBackgroundColour(markup::Rgb colour) override { background = colour; }
    std::size_t selectionStart() const override { return selection.first; }
    std::size_t selectionEnd() const override { return selection.second; }
    void select(std::size_t start, std::size_t length) override {
        selection = {start, start + length};
    }
    void replaceRange(std::size_t start, std::size_t length, TextView text) override {
        value.replace(start, length, text);
    }
    void giveFocus() override { focused = true; }
    Text value;
    std::pair<std::size_t, std::size_t> selection;
    bool focused = false;
    bool enabled = true;
    std::optional<markup::Rgb> background;
};

// Shows "Font" with nothing selected, as the window starts.
struct FakeFontBox final : editor::FontBox {
    Text currentText() const override { return text; }
    void setCurrentEntry(int entry) override {
        selected = entry;
        text = Text(kFontNames.at(static_cast<std::size_t>(entry)));
    }
    void setEditText(TextView value) override {
        selected = -1;
        text = Text(value);
    }
    int selected = -1;
    Text text = u"Font";
};

// Answers with a scripted choice; an empty path cancels.
struct FakeFileDialog final : editor::FileDialog {
    void setOpenForm(bool open) override { openForm = open; }
    void setDefaultSuffix(TextView) override {}
    void setTitle(TextView) override {}
    void setFilter(TextView, TextView) override {}
    void exec() override {
        ++shown;
        path = nextPath;
    }
    Text chosenPath() const override { return path; }
    Text chosenFileName() const override { return path.substr(path.rfind(u'/') + 1); }
    void clearChosenPath() override { path.clear(); }
    Text nextPath, path;
    int shown = 0;
    bool openForm = false;
};

// The tab strip: which language's page is shown, and whether the caret is in
// its title box.
struct FakePages final : editor::Pages {
    Language shownLanguage() const override { return shown; }
    bool titleHasCaret() const override { return inTitle; }
    void showLanguage(Language language) override { shown = language; }
    Language shown = Language::English;
    bool inTitle = false;
};

// The whole window in memory, in its initial state.
struct FakeWindow {
    FakeWindow() : editor(controls()) {
        for (const Language language : kAllLanguages) {
            body(language).onChange = [this, language](const editor::TextChange& change) {
                editor.bodyChanged(language, change);
            };
        }
        for (FakeControl& box : colourBoxes) {
            box.setText(u"0");
            box.enabled = false;
        }
        for (FakeControl& button : okButtons) {
            button.enabled = false;
        }
    }
    FakeWindow(const FakeWindow&) = delete;

    editor::WindowControls controls() {
        editor::WindowControls c{.folderBox = &folder,
                                 .nameBox = &name,
                                 .fontBox = &font,
                                 .messages = &messages,
                                 .fileDialog = &dialog,
                                 .pages = &pages,
                                 .clock = &clock,
                                 .diagnostics = &diagnostics};
        for (int i = 0; i < kLanguageCount; ++i) {
            editor::LanguageControls& language = c.languages[i];
            language.body = &boxes[i];
            language.preview = &boxes[kLanguageCount + i];
            language.previewText = &boxes[kLanguageCount + i];
            language.title = &titles[i];
            language.colourButton = &colourButtons[i];
            language.okButton = &okButtons[i];
            for (int b = 0; b < editor::kColourBoxesPerLanguage; ++b) {
                language.colourBoxes[b] = &colourBoxes[editor::kColourBoxesPerLanguage * i + b];
            }
        }
        return c;
    }

    FakeRichTextBox& body(Language language) { return boxes[indexOf(language)]; }
    FakeRichTextBox& pane(Language language) { return boxes[kLanguageCount + indexOf(language)]; }

    // Titles, bodies and the font as the window shows them.
    SchemaDocument document() const {
        SchemaDocument doc;
        doc.font = font.text;
        for (int i = 0; i < kLanguageCount; ++i) {
            doc.entries[i] = {titles[i].value, boxes[i].text};
        }
        return doc;
    }

    std::array<FakeRichTextBox, 2 * kLanguageCount> boxes;  // rtbText(0..7)
    std::array<FakeControl, kLanguageCount> titles;
    std::array<FakeControl, kLanguageCount * editor::kColourBoxesPerLanguage>
        colourBoxes;  // "0" and disabled, as the window starts
    std::array<FakeControl, kLanguageCount> colourButtons;
    std::array<FakeControl, kLanguageCount> okButtons;  // disabled
    FakeControl folder, name;
    FakeFontBox font;
    RecordingMessageBox messages;
    FakeFileDialog dialog;
    FakePages pages;
    CountingClock clock;
    std::ostringstream diagnostics;
    editor::SchemaEditor editor;
};

}  // namespace lorekeep::testing
