#pragma once

#include <array>

#include "document/controls.hpp"
#include "document/date_stamp.hpp"
#include "document/schema_reader.hpp"
#include "markup/preview_pane.hpp"

namespace lorekeep {

// Eight rich-text boxes: the four language editors, then their preview panes.
inline constexpr int kRichTextBoxCount = 8;
inline constexpr int kPreviewIndexOffset = 4;
inline constexpr int kColourBoxesPerLanguage = 3;

// The longest body the window takes on. A body is one paragraph of its text
// box, and the toolkit lays a paragraph out whole on every change: at four
// million characters a keystroke already takes over a second, and some tens
// of millions stall the window for many minutes.
inline constexpr std::size_t kMaxBodyLength = 4'000'000;

// Every control of the main window that a command reads or writes, by the
// window's own names and indices.
struct WindowControls {
    std::array<EditorBox*, kRichTextBoxCount> rtbText{};
    std::array<markup::PreviewPane*, kLanguageCount> previewPane{};  // rtbText(4 + i)
    std::array<TextBox*, kLanguageCount> txtTitle{};
    std::array<TextBox*, kLanguageCount * kColourBoxesPerLanguage> txtColor{};
    std::array<Button*, kLanguageCount> cmdColor{};
    std::array<Button*, kLanguageCount> cmdOK{};
    TextBox* txtLoc = nullptr;
    TextBox* txtName = nullptr;
    FontBox* cboFont = nullptr;
    MessageBox* messages = nullptr;
    FileDialog* cd1 = nullptr;
    const Clock* clock = nullptr;
};

// Returns the negation of a truth value.
constexpr bool Toggle(bool Data) {
    return !Data;
}

// The window's behaviour, event by event, written against the control
// interfaces. The window owns one and routes every handled event to it.
class WindowCommands final : public DocumentSource {
  public:
    explicit WindowCommands(WindowControls controls) : c_(controls) {}

    // Text changed in rich-text box Index: an editor (0..3) refreshes its
    // language's preview; a preview pane's own changes do nothing.
    void rtbText_Change(int Index);

    // A character typed into rich-text box Index (0..7), before it is
    // inserted. Enter (13) writes a break marker instead and is suppressed by
    // setting the code to 0; every other code passes unchanged.
    void rtbText_KeyPress(int Index, int& KeyAscii);

    // Splices a marker into editor Index at the caret, gives the editor the
    // focus and puts the caret directly behind the marker.
    void InsertAtCaret(int Index, TextView marker);

    // The marker buttons of language Index.
    void cmdLeftJus_Click(int Index);
    void cmdCent_Click(int Index);
    void cmdRightJus_Click(int Index);
    void cmdColor_Click(int Index);
    void cmdOK_Click(int Index);

    // Copies body Index over the other three.
    void cmdCopy_Click(int Index);

    // Reads the document from the controls, for Save.
    Text Title(Language language) const override;
    Text Body(Language language) const override;
    Text Font() const override;

    // Writes the schema file from the controls.
    void Save(TextView SchemaName, TextView filename);

    // Reads a schema file into the controls.
    void Load(TextView SchemaName, TextView filename);

    // The file buttons: pick a location; save; load.
    void cmdLoc_Click();
    void cmdSave_Click();
    void cmdLoad_Click();

    // How Load reads records (tests compare the layouts both ways).
    ReaderOptions readerOptions{true, kMaxBodyLength};

    // Per language: which justification was switched on last, and whether
    // the Colour button stands open. All false at start; nothing resets them.
    std::array<bool, kLanguageCount> LeftJusOn{};
    std::array<bool, kLanguageCount> CentOn{};
    std::array<bool, kLanguageCount> RightJusOn{};
    std::array<bool, kLanguageCount> ColorOn{};

  private:
    using Flags = std::array<bool, kLanguageCount>;
    // One justification button: flips its own flag and, when that switches it
    // on, clears the first of the other two that is set and writes its marker.
    void Justify(int Index, Flags& own, Flags& firstOther, Flags& secondOther, TextView marker);

    WindowControls c_;
};

}  // namespace lorekeep
