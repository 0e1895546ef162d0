#pragma once

#include <array>
#include <iosfwd>
#include <string>

#include "editor/controls.hpp"
#include "editor/text_edits.hpp"
#include "markup/incremental_renderer.hpp"
#include "schema/date_stamp.hpp"
#include "schema/limits.hpp"
#include "schema/schema_reader.hpp"

namespace lorekeep::editor {

inline constexpr int kColourBoxesPerLanguage = 3;  // red, green, blue

// The controls of one language that the behaviour reads or writes.
struct LanguageControls {
    EditorBox* body = nullptr;         // rtbText(i), the language's editor
    PreviewPane* preview = nullptr;    // rtbText(4 + i), as it shows the preview
    EditorBox* previewText = nullptr;  // the same pane, as a box that can be typed into
    TextBox* title = nullptr;
    std::array<TextBox*, kColourBoxesPerLanguage> colourBoxes{};
    Button* colourButton = nullptr;
    Button* okButton = nullptr;
};

// Every control of the main window that the behaviour reads or writes.
struct WindowControls {
    std::array<LanguageControls, kLanguageCount> languages{};
    TextBox* folderBox = nullptr;
    TextBox* nameBox = nullptr;
    FontBox* fontBox = nullptr;
    MessageBox* messages = nullptr;
    FileDialog* fileDialog = nullptr;
    Pages* pages = nullptr;
    const Clock* clock = nullptr;
    // Where the reason of a failed save or load goes (the message boxes say
    // only what the user is told); none for nowhere.
    std::ostream* diagnostics = nullptr;

    LanguageControls& of(Language language) {
        return languages[static_cast<std::size_t>(indexOf(language))];
    }
    const LanguageControls& of(Language language) const {
        return languages[static_cast<std::size_t>(indexOf(language))];
    }
};

// Which of a language's two rich-text boxes an event comes from.
enum class Box { Body, Preview };

// The marker buttons' state of one language. At most one justification is on.
struct MarkerState {
    bool leftJustifyOn = false;
    bool centreOn = false;
    bool rightJustifyOn = false;
    bool colourOn = false;  // the Colour button stands open
};

// The window's behaviour, event by event. The window owns one and routes
// every handled event to it with the language of the control that raised it.
class SchemaEditor {
  public:
    explicit SchemaEditor(WindowControls controls) : m_controls(controls) {}

    // Returns the negation of a truth value; flips the marker flags.
    static constexpr bool toggle(bool data) { return !data; }

    // A language's body changed by `change`, or, when the box cannot name
    // the change, in some way: the language's preview follows at once. (A
    // preview pane's own changes are no event.)
    void bodyChanged(Language language, const std::optional<TextChange>& change);

    // A character typed into one of a language's rich-text boxes, before it
    // is inserted. Enter (13) writes a break marker instead and is suppressed
    // by setting the code to 0; every other code passes unchanged.
    void characterTyped(Language language, Box box, int& code);

    // Splices a marker into the language's editor at the caret, gives the
    // editor the focus and puts the caret directly behind the marker.
    void insertAtCaret(Language language, TextView marker);

    // Puts `replacement` in place of `word`, which stands at `start` of the
    // language's body (a spelling suggestion): the smallest splice, one undo
    // step, the caret behind the new word. A body that would grow beyond its
    // limit, or that no longer holds the word there, beeps and stays as it is.
    void replaceWord(Language language, std::size_t start, TextView word, TextView replacement);

    // The marker buttons of one language.
    void leftJustifyClicked(Language language);
    void centreClicked(Language language);
    void rightJustifyClicked(Language language);
    void colourClicked(Language language);
    void okClicked(Language language);

    // Copies the language's body over the other three.
    void copyClicked(Language language);

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
    const MarkerState& markerState(Language language) const { return stateOf(language).markers; }

  private:
    // What the behaviour keeps of one language.
    struct LanguageState {
        MarkerState markers;
        // The editor's text and its preview, kept in step change by change.
        markup::IncrementalRenderer preview;
        bool previewInStep = false;
    };
    LanguageState& stateOf(Language language) {
        return m_languages[static_cast<std::size_t>(indexOf(language))];
    }
    const LanguageState& stateOf(Language language) const {
        return m_languages[static_cast<std::size_t>(indexOf(language))];
    }

    // One justification button: flips its own flag and, when that switches it
    // on, clears the first of the other two that is set and writes its marker.
    void justify(Language language, bool MarkerState::*own, bool MarkerState::*firstOther,
                 bool MarkerState::*secondOther, TextView marker);
    bool folderAndNameGiven();
    // Writes an edit's text and caret into an editor, unless the body would
    // grow beyond its limit: then the editor beeps and keeps its text.
    void applyEdit(EditorBox& editor, const TextEdit& edit);
    // Reads the file at `path` (UTF-8) into the controls; a failure shows its
    // one message.
    void loadFile(const std::string& path);
    // Reads the file and applies it language by language; why it failed, or
    // nothing.
    std::string applyLoad(const std::string& path);
    // One line on the diagnostics stream, beside the message box.
    void diagnose(const std::string& what, const std::string& reason) const;

    WindowControls m_controls;
    std::array<LanguageState, kLanguageCount> m_languages{};
};

}  // namespace lorekeep::editor
