#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "editor/schema_editor.hpp"
#include "schema/schema_document.hpp"

// The window's controls held in memory, wired to the window's behaviour as
// the real window is.
namespace lorekeep::testing {

// Records every message box instead of showing it.
class RecordingMessageBox final : public editor::MessageBox {
  public:
    struct Shown {
        Text text;
        Text title;
        bool operator==(const Shown&) const = default;
    };
    void showMessage(TextView text, TextView title) override {
        shown.push_back({Text(text), Text(title)});
    }
    std::vector<Shown> shown;
};

// Answers `first` and then one second later on every further reading, so a
// save that reads the clock more than once is caught.
class SteppingClock final : public Clock {
  public:
    explicit SteppingClock(LocalDateTime first) : m_next(first) {}
    LocalDateTime now() const override {
        ++readings;
        LocalDateTime now = m_next;
        m_next.second = (m_next.second + 1) % 60;
        return now;
    }
    mutable int readings = 0;

  private:
    mutable LocalDateTime m_next;
};

// A rich-text box: an editor for the commands and a preview pane.
class FakeRichTextBox final : public editor::EditorBox, public editor::PreviewPane {
  public:
    Text plainText() const override { return text; }
    void replaceText(TextView value) override {
        text = Text(value);
        caret = 0;
        ++replacements;
        if (onChange) {
            onChange();
        }
    }
    std::size_t caretPosition() const override { return caret; }
    void setCaretPosition(std::size_t position) override {
        caret = std::min(position, text.size());
    }
    void giveFocus() override { focused = true; }
    void showPreview(const markup::RenderedPreview& value) override { preview = value; }

    Text text;
    std::size_t caret = 0;
    bool focused = false;
    int replacements = 0;
    std::optional<markup::RenderedPreview> preview;  // what the pane last showed
    std::function<void()> onChange;
};

class FakeTextBox final : public editor::TextBox {
  public:
    explicit FakeTextBox(Text initial = {}, bool isEnabled = true)
        : value(std::move(initial)), enabled(isEnabled) {}
    Text text() const override { return value; }
    void setText(TextView text) override { value = Text(text); }
    void setEnabled(bool on) override { enabled = on; }
    Text value;
    bool enabled;
};

class FakeButton final : public editor::Button {
  public:
    explicit FakeButton(bool isEnabled = true) : enabled(isEnabled) {}
    void setEnabled(bool on) override { enabled = on; }
    void setBackgroundColour(markup::Rgb colour) override { background = colour; }
    bool enabled;
    std::optional<markup::Rgb> background;
};

// Shows "Font" with nothing selected, as the window starts.
class FakeFontBox final : public editor::FontBox {
  public:
    Text currentText() const override { return text; }
    void setCurrentEntry(int position) override {
        selected = position;
        text = Text(kFontNames.at(static_cast<std::size_t>(position)));
    }
    void setEditText(TextView value) override {
        selected = -1;
        text = Text(value);
    }
    int selected = -1;
    Text text = u"Font";
};

// Answers with a scripted choice; an empty path cancels.
class FakeFileDialog final : public editor::FileDialog {
  public:
    void setDefaultSuffix(TextView value) override { suffix = Text(value); }
    void setTitle(TextView value) override { title = Text(value); }
    void setFilter(TextView description, TextView pattern) override {
        filter = Text(description) + u"|" + Text(pattern);
    }
    void exec() override {
        ++shown;
        path = nextPath;
    }
    Text chosenPath() const override { return path; }
    Text chosenFileName() const override { return path.substr(path.rfind(u'/') + 1); }
    void clearChosenPath() override { path.clear(); }
    Text nextPath, path, suffix, title, filter;
    int shown = 0;
};

// The whole window in memory, in its initial state.
struct FakeWindow {
    FakeWindow() : editor(controls()) {
        for (int k = 0; k < editor::kRichTextBoxCount; ++k) {
            boxes[k].onChange = [this, k] { editor.textChanged(k); };
        }
        for (auto& box : colourBoxes) {
            box = FakeTextBox(u"0", false);
        }
        for (auto& button : okButtons) {
            button.enabled = false;
        }
    }
    FakeWindow(const FakeWindow&) = delete;
    FakeWindow& operator=(const FakeWindow&) = delete;

    editor::WindowControls controls() {
        editor::WindowControls c{.folderBox = &folder, .nameBox = &name, .fontBox = &font,
                                 .messages = &messages, .fileDialog = &dialog, .clock = &clock};
        for (int k = 0; k < editor::kRichTextBoxCount; ++k) {
            c.richTextBoxes[k] = &boxes[k];
        }
        for (int k = 0; k < 12; ++k) {
            c.colourBoxes[k] = &colourBoxes[k];
        }
        for (int i = 0; i < kLanguageCount; ++i) {
            c.previewPanes[i] = &boxes[editor::kPreviewIndexOffset + i];
            c.titleBoxes[i] = &titles[i];
            c.colourButtons[i] = &colourButtons[i];
            c.okButtons[i] = &okButtons[i];
        }
        return c;
    }

    // Titles, bodies and the font as the window shows them.
    SchemaDocument document() const {
        SchemaDocument doc;
        for (int i = 0; i < kLanguageCount; ++i) {
            doc.entries[i] = {titles[i].value, boxes[i].text};
        }
        doc.font = font.text;
        return doc;
    }

    std::array<FakeRichTextBox, editor::kRichTextBoxCount> boxes;  // rtbText(0..7)
    std::array<FakeTextBox, kLanguageCount> titles;
    std::array<FakeTextBox, 12> colourBoxes;  // "0" and disabled, as the window starts
    std::array<FakeButton, kLanguageCount> colourButtons;
    std::array<FakeButton, kLanguageCount> okButtons;  // disabled
    FakeTextBox folder, name;
    FakeFontBox font;
    RecordingMessageBox messages;
    FakeFileDialog dialog;
    SteppingClock clock{LocalDateTime{2005, 3, 14, 14, 5, 9}};
    editor::SchemaEditor editor;
};

}  // namespace lorekeep::testing
