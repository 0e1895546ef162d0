#pragma once

#include <functional>
#include <vector>

#include "document/schema_document.hpp"
#include "document/window_commands.hpp"
#include "markup/model_pane.hpp"
#include "support/fakes.hpp"

namespace lorekeep::testing {

// A rich-text box held in memory: an editor for the commands and a preview
// pane for the renderer, like the window's real box.
class FakeRichTextBox final : public EditorBox, public markup::PreviewPane {
  public:
    std::function<void()> onChange;
    bool focused = false;
    int replacements = 0;

    Text PlainText() const override { return model.ReadText(); }
    void SetPlainText(TextView text) override {
        model.SetText(text);
        ++replacements;
        Changed();
    }
    std::size_t Caret() const override { return model.caret(); }
    void SetCaret(std::size_t position) override { model.PlaceCaret(position); }
    void Focus() override { focused = true; }

    Text ReadText() const override { return model.ReadText(); }
    void SetText(TextView text) override {
        model.SetText(text);
        Changed();
    }
    void ReplaceText(std::size_t offset, std::size_t count, TextView with) override {
        model.ReplaceText(offset, count, with);
        Changed();
    }
    void PlaceCaret(std::size_t offset) override { model.PlaceCaret(offset); }
    void SelectToEnd(std::size_t offset) override { model.SelectToEnd(offset); }
    void ColourSelection(markup::Rgb colour) override { model.ColourSelection(colour); }
    void AlignSelection(markup::Alignment alignment) override { model.AlignSelection(alignment); }
    void ShowRendered(const markup::RenderedPreview& preview) override {
        model.ShowRendered(preview);
        Changed();
    }

    markup::ModelPane model;

  private:
    void Changed() {
        if (onChange) {
            onChange();
        }
    }
};

class FakeTextBox final : public TextBox {
  public:
    explicit FakeTextBox(Text initial = {}, bool isEnabled = true)
        : text(std::move(initial)), enabled(isEnabled) {}
    Text GetText() const override { return text; }
    void SetText(TextView value) override { text = Text(value); }
    void SetEnabled(bool value) override { enabled = value; }
    bool IsEnabled() const override { return enabled; }

    Text text;
    bool enabled;
};

class FakeButton final : public Button {
  public:
    explicit FakeButton(bool isEnabled = true) : enabled(isEnabled) {}
    void SetEnabled(bool value) override { enabled = value; }
    bool IsEnabled() const override { return enabled; }
    void SetBackColour(markup::Rgb colour) override { backColour = colour; }

    bool enabled;
    std::optional<markup::Rgb> backColour;
};

// The font box with the window's five entries, showing "Font", nothing selected.
class FakeFontBox final : public FontBox {
  public:
    int EntryCount() const override { return static_cast<int>(entries.size()); }
    Text EntryText(int position) const override { return entries.at(position); }
    void SelectEntry(int position) override {
        selected = position;
        text = entries.at(position);
    }
    Text CurrentText() const override { return text; }
    void SetCurrentText(TextView value) override {
        selected = -1;
        text = Text(value);
    }

    std::vector<Text> entries{u"Papyrus14", u"Papyrus20", u"SmallFont10", u"MediumFont14",
                              u"MediumFont16"};
    int selected = -1;
    Text text = u"Font";
};

// A file dialog that answers with a scripted choice.
class FakeFileDialog final : public FileDialog {
  public:
    void SetDefaultExtension(TextView value) override { extension = Text(value); }
    void SetTitle(TextView value) override { title = Text(value); }
    void SetFilter(TextView description, TextView pattern) override {
        filterDescription = Text(description);
        filterPattern = Text(pattern);
    }
    void ShowSave() override {
        ++shown;
        path = nextPath;
        name = nextName;
    }
    Text FileName() const override { return path; }
    Text FileTitle() const override { return name; }
    void ClearFileName() override {
        path.clear();
        name.clear();
    }

    Text nextPath, nextName;  // what the user picks next; empty path: cancel
    Text extension, title, filterDescription, filterPattern, path, name;
    int shown = 0;
};

// The whole window in memory, in its initial state, wired to the window's
// behaviour as the real window is.
struct FakeWindow {
    FakeWindow() : commands(Controls()) {
        for (int k = 0; k < kRichTextBoxCount; ++k) {
            rtbText[k].onChange = [this, k] { commands.rtbText_Change(k); };
        }
    }
    FakeWindow(const FakeWindow&) = delete;
    FakeWindow& operator=(const FakeWindow&) = delete;

    WindowControls Controls() {
        WindowControls c;
        for (int k = 0; k < kRichTextBoxCount; ++k) {
            c.rtbText[k] = &rtbText[k];
        }
        for (int i = 0; i < kLanguageCount; ++i) {
            c.previewPane[i] = &rtbText[kPreviewIndexOffset + i];
            c.txtTitle[i] = &txtTitle[i];
            c.cmdColor[i] = &cmdColor[i];
            c.cmdOK[i] = &cmdOK[i];
        }
        for (std::size_t k = 0; k < txtColor.size(); ++k) {
            c.txtColor[k] = &txtColor[k];
        }
        c.txtLoc = &txtLoc;
        c.txtName = &txtName;
        c.cboFont = &cboFont;
        c.messages = &messages;
        c.cd1 = &cd1;
        c.clock = &clock;
        return c;
    }

    // What Load fills: the editors, titles and font box, and the message box.
    LoadTargets LoadTargetsOf() {
        LoadTargets targets;
        for (int i = 0; i < kLanguageCount; ++i) {
            targets.editors[i] = &rtbText[i];
            targets.titles[i] = &txtTitle[i];
        }
        targets.font = &cboFont;
        targets.messages = &messages;
        return targets;
    }

    // Titles, bodies and the font as the window shows them.
    SchemaDocument Document() const {
        SchemaDocument doc;
        for (int i = 0; i < kLanguageCount; ++i) {
            doc.entries[i] = {txtTitle[i].text, rtbText[i].PlainText()};
        }
        doc.font = cboFont.text;
        return doc;
    }

    std::array<FakeRichTextBox, kRichTextBoxCount> rtbText;
    std::array<FakeTextBox, kLanguageCount> txtTitle;
    std::array<FakeTextBox, kLanguageCount * kColourBoxesPerLanguage> txtColor{
        FakeTextBox(u"0", false), FakeTextBox(u"0", false), FakeTextBox(u"0", false),
        FakeTextBox(u"0", false), FakeTextBox(u"0", false), FakeTextBox(u"0", false),
        FakeTextBox(u"0", false), FakeTextBox(u"0", false), FakeTextBox(u"0", false),
        FakeTextBox(u"0", false), FakeTextBox(u"0", false), FakeTextBox(u"0", false)};
    std::array<FakeButton, kLanguageCount> cmdColor;
    std::array<FakeButton, kLanguageCount> cmdOK{FakeButton(false), FakeButton(false),
                                                 FakeButton(false), FakeButton(false)};
    FakeTextBox txtLoc, txtName;
    FakeFontBox cboFont;
    RecordingMessageBox messages;
    FakeFileDialog cd1;
    SteppingClock clock{LocalDateTime{2005, 3, 14, 14, 5, 9}};
    WindowCommands commands;
};

}  // namespace lorekeep::testing
