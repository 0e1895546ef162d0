#pragma once

#include <array>
#include <string>

#include "editor/controls.hpp"
#include "editor/text_edits.hpp"
#include "markup/incremental_renderer.hpp"
#include "schema/date_stamp.hpp"
#include "schema/limits.hpp"
#include "schema/schema_reader.hpp"

namespace lorekeep::editor {

// Eight rich-text boxes: the four language editors, then their preview panes.
inline constexpr int kRichTextBoxCount = 8;
inline constexpr int kPreviewIndexOffset = 4;
inline constexpr int kColourBoxesPerLanguage = 3;

// Every control of the main window that the behaviour reads or writes.
struct WindowControls {
    std::array<EditorBox*, kRichTextBoxCount> richTextBoxes{};  // editors, then preview panes
    std::array<PreviewPane*, kLanguageCount> previewPanes{};    // the same panes, as panes
    std::array<TextBox*, kLanguageCount> titleBoxes{};
    std::array<TextBox*, kLanguageCount * kColourBoxesPerLanguage> colourBoxes{};
    std::array<Button*, kLanguageCount> colourButtons{};
    std::array<Button*, kLanguageCount> okButtons{};
    TextBox* folderBox = nullptr;
    TextBox* nameBox = nullptr;
    FontBox* fontBox = nullptr;
    MessageBox* messages = nullptr;
    FileDialog* fileDialog = nullptr;
    const Clock* clock = nullptr;
};

// The marker buttons' state of one language. At most one justification is on.
struct MarkerState {
    bool leftJustifyOn = false;
    bool centreOn = false;
    bool rightJustifyOn = false;
    bool colourOn = false;  // the Colour button stands open
};

// The window's behaviour, event by event. The window owns one and routes
// every handled event to it with the index of the control that raised it.
class SchemaEditor {
  public:
    explicit SchemaEditor(WindowControls controls) : m_controls(controls) {}

    // Returns the negation of a truth value; flips the marker flags.
    static constexpr bool toggle(bool data) { return !data; }

    // The text of rich-text box `box` changed: an editor (0..3) refreshes its
    // language's preview at once; a preview pane's own changes do nothing.
    void textChanged(int box);

    // A character typed into rich-text box `box` (0..7), before it is
    // inserted. Enter (13) writes a break marker instead and is suppressed by
    // setting the code to 0; every other code passes unchanged.
    void characterTyped(int box, int& code);

    // Splices a marker into the language's editor at the caret, gives the
    // editor the focus and puts the caret directly behind the marker.
    void insertAtCaret(int language, TextView marker);

    // The marker buttons of one language.
    void leftJustifyClicked(int language);
    void centreClicked(int language);
    void rightJustifyClicked(int language);
    void colourClicked(int language);
    void okClicked(int language);

    // Copies the language's body over the other three.
    void copyClicked(int language);

    // The file buttons: pick a location; save; load.
    void locationClicked();
    void saveClicked();
    void loadClicked();

    // Picks an existing schema file in the dialog's open form and opens it.
    void openClicked();

    // Opens a schema file by its full path, as a file manager hands it over:
    // the folder box takes its folder (with the trailing separator), the name
    // box its name less ".sch" (in any letter case), and the load runs as the
    // load button runs it.
    void openFile(TextView path);

    // Writes schemaFolder/schemaName.sch from the controls; a failure shows
    // its one message.
    void save(TextView schemaName, TextView schemaFolder);

    // Reads schemaFolder/schemaName.sch into the controls, language by
    // language; a failure shows its one message and keeps the languages
    // already loaded.
    void load(TextView schemaName, TextView schemaFolder);

    // The marker buttons' state of a language, for tests and the fuzzer.
    const MarkerState& markerState(int language) const { return m_state[language]; }

  private:
    // One justification button: flips its own flag and, when that switches it
    // on, clears the first of the other two that is set and writes its marker.
    void justify(int language, bool MarkerState::*own, bool MarkerState::*firstOther,
                 bool MarkerState::*secondOther, TextView marker);
    bool folderAndNameGiven();
    // Writes an edit's text and caret into an editor, unless the body would
    // grow beyond its limit: then the editor beeps and keeps its text.
    void applyEdit(EditorBox& editor, const TextEdit& edit);
    // Reads the file at `path` (UTF-8) into the controls; a failure shows its
    // one message.
    void loadFile(const std::string& path);
    // Reads the file and applies it language by language; false on failure.
    bool applyLoad(const std::string& path);

    WindowControls m_controls;
    std::array<MarkerState, kLanguageCount> m_state{};
    // Each editor's text and its preview, kept in step change by change.
    std::array<markup::IncrementalRenderer, kLanguageCount> m_previews{};
    std::array<bool, kLanguageCount> m_previewInStep{};
};

}  // namespace lorekeep::editor
