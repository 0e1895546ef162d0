#include "editor/schema_editor.hpp"

#include <algorithm>
#include <new>
#include <ostream>

#include "editor/text_edits.hpp"
#include "editor/texts.hpp"
#include "markup/markers.hpp"
#include "markup/renderer.hpp"
#include "markup/scanner.hpp"
#include "schema/schema_document.hpp"
#include "schema/schema_file.hpp"
#include "schema/schema_writer.hpp"

namespace lorekeep::editor {

namespace {

constexpr int kEnterKey = 13;
// The name box takes the chosen file's name less this many characters.
constexpr std::size_t kExtensionLength = 4;

}  // namespace

void SchemaEditor::bodyChanged(Language language, const std::optional<TextChange>& change) {
    LanguageControls& controls = m_controls.of(language);
    LanguageState& state = stateOf(language);
    markup::IncrementalRenderer& preview = state.preview;
    // A change the box can name renders only around itself; anything else
    // renders the whole text again.
    if (change && state.previewInStep && change->start <= preview.bodyLength() &&
        change->removed <= preview.bodyLength() - change->start) {
        controls.preview->showPreviewChange(
            preview.replace(change->start, change->removed, change->inserted),
            [&preview] { return preview.preview(); });
        return;
    }
    preview.reset(controls.body->plainText());
    state.previewInStep = true;
    controls.preview->showPreview(preview.preview());
}

void SchemaEditor::characterTyped(Language language, Box box, int& code) {
    if (code != kEnterKey) {
        return;
    }
    LanguageControls& controls = m_controls.of(language);
    EditorBox& editor = box == Box::Body ? *controls.body : *controls.previewText;
    applyEdit(editor, breakKeyEdit(editor.plainText(), editor.caretPosition()));
    code = 0;
}

void SchemaEditor::insertAtCaret(Language language, TextView marker) {
    EditorBox& editor = *m_controls.of(language).body;
    const TextEdit edit = editor::insertAtCaret(editor.plainText(), editor.caretPosition(), marker);
    editor.giveFocus();
    applyEdit(editor, edit);
}

void SchemaEditor::replaceWord(Language language, std::size_t start, TextView word,
                               TextView replacement) {
    replaceStretch(*m_controls.of(language).body, start, word, replacement, kMaxBodyLength);
}

void SchemaEditor::applyEdit(EditorBox& editor, const TextEdit& edit) {
    if (edit.text.size() > kMaxBodyLength) {
        editor.beep();
        return;
    }
    editor.replaceText(edit.text);
    editor.setCaretPosition(edit.caret);
}

void SchemaEditor::justify(Language language, bool MarkerState::*own, bool MarkerState::*firstOther,
                           bool MarkerState::*secondOther, TextView marker) {
    MarkerState& state = stateOf(language).markers;
    state.*own = toggle(state.*own);
    if (!(state.*own)) {
        return;
    }
    if (state.*firstOther) {
        state.*firstOther = false;
    } else if (state.*secondOther) {
        state.*secondOther = false;
    }
    insertAtCaret(language, marker);
}

void SchemaEditor::leftJustifyClicked(Language language) {
    justify(language, &MarkerState::leftJustifyOn, &MarkerState::rightJustifyOn,
            &MarkerState::centreOn, markup::kLeftJustify);
}

void SchemaEditor::centreClicked(Language language) {
    justify(language, &MarkerState::centreOn, &MarkerState::leftJustifyOn,
            &MarkerState::rightJustifyOn, markup::kCentre);
}

void SchemaEditor::rightJustifyClicked(Language language) {
    justify(language, &MarkerState::rightJustifyOn, &MarkerState::leftJustifyOn,
            &MarkerState::centreOn, markup::kRightJustify);
}

void SchemaEditor::colourClicked(Language language) {
    MarkerState& state = stateOf(language).markers;
    state.colourOn = toggle(state.colourOn);
    if (state.colourOn) {
        LanguageControls& controls = m_controls.of(language);
        for (TextBox* box : controls.colourBoxes) {  // red, green, blue, then OK
            box->setEnabled(true);
        }
        controls.okButton->setEnabled(true);
    } else {
        insertAtCaret(language, markup::kColourBlack);
    }
}

void SchemaEditor::okClicked(Language language) {
    LanguageControls& controls = m_controls.of(language);
    std::array<Text, kColourBoxesPerLanguage> typed;
    std::array<std::uint8_t, kColourBoxesPerLanguage> values{};
    bool allValid = true;
    for (int c = 0; c < kColourBoxesPerLanguage; ++c) {  // every box, in order, in every case
        typed[c] = controls.colourBoxes[c]->text();
        // Exactly the forms that the preview then colours.
        if (const auto value = markup::colourComponentValue(typed[c])) {
            values[c] = *value;
        } else {
            allValid = false;
        }
    }
    if (!allValid) {
        m_controls.messages->showMessage(texts::kColourOutOfRange, texts::kColourOutOfRangeTitle);
        return;
    }
    controls.colourButton->setBackgroundColour({values[0], values[1], values[2]});
    // The components go in exactly as typed.
    insertAtCaret(language, markup::colourMarker(typed[0], typed[1], typed[2]));
    for (TextBox* box : controls.colourBoxes) {
        box->setEnabled(false);
        box->setText(u"0");
    }
    controls.okButton->setEnabled(false);
}

void SchemaEditor::copyClicked(Language language) {
    const Text source = m_controls.of(language).body->plainText();
    for (const Language other : kAllLanguages) {
        if (other != language) {
            m_controls.of(other).body->replaceText(source);
        }
    }
}

void SchemaEditor::locationClicked() {
    FileDialog& dialog = *m_controls.fileDialog;
    dialog.setOpenForm(false);
    dialog.setDefaultSuffix(texts::kSchemaDefaultExtension);
    dialog.setTitle(texts::kLocationDialogTitle);
    dialog.setFilter(texts::kSchemaFilterDescription, texts::kSchemaFilterPattern);
    dialog.exec();
    const Text path = dialog.chosenPath();
    if (path.empty()) {
        return;  // cancelled
    }
    const Text name = dialog.chosenFileName();
    // The folder keeps its trailing separator.
    m_controls.folderBox->setText(
        TextView(path).substr(0, path.size() - std::min(name.size(), path.size())));
    // The last four characters go, whatever they are; a shorter name has no
    // sound reading, so the name box keeps what it had.
    if (name.size() >= kExtensionLength) {
        m_controls.nameBox->setText(TextView(name).substr(0, name.size() - kExtensionLength));
    }
    dialog.clearChosenPath();
}

void SchemaEditor::openClicked() {
    FileDialog& dialog = *m_controls.fileDialog;
    dialog.setOpenForm(true);
    dialog.setDefaultSuffix({});
    dialog.setTitle(texts::kOpenDialogTitle);
    dialog.setFilter(texts::kOpenFilterDescription, texts::kSchemaFilterPattern);
    dialog.exec();
    const Text path = dialog.chosenPath();
    dialog.clearChosenPath();
    if (!path.empty()) {
        openFile(path);
    }
}

void SchemaEditor::openFile(TextView path) {
    const std::size_t folderEnd = path.rfind(kPathSeparator) + 1;  // 0 without a folder
    TextView name = path.substr(folderEnd);
    if (hasSchemaExtension(name)) {
        name.remove_suffix(kSchemaExtension.size());
    }
    m_controls.folderBox->setText(path.substr(0, folderEnd));
    m_controls.nameBox->setText(name);
    // The file asked for, even where folder/name.sch names another spelling.
    if (folderAndNameGiven()) {
        loadFile(toUtf8(path));
    }
}

bool SchemaEditor::folderAndNameGiven() {
    // Spaces count as something.
    if (m_controls.folderBox->text().empty() || m_controls.nameBox->text().empty()) {
        m_controls.messages->showMessage(texts::kFolderOrNameMissing, texts::kProgramTitle);
        return false;
    }
    return true;
}

void SchemaEditor::saveClicked() {
    if (folderAndNameGiven()) {
        save(m_controls.nameBox->text(), m_controls.folderBox->text());
    }
}

void SchemaEditor::loadClicked() {
    if (folderAndNameGiven()) {
        load(m_controls.nameBox->text(), m_controls.folderBox->text());
    }
}

void SchemaEditor::save(TextView schemaName, TextView schemaFolder) {
    FileResult saved{false, "a control could not give its text"};
    try {
        SchemaDocument document;
        document.name = Text(schemaName);
        document.folder = Text(schemaFolder);
        document.font = m_controls.fontBox->currentText();
        for (const Language language : kAllLanguages) {
            const LanguageControls& controls = m_controls.of(language);
            document.entry(language) = {controls.title->text(), controls.body->plainText()};
        }
        // One reading of the clock: all four records carry the same stamp.
        saved = saveSchema(document, m_controls.clock->now());
    } catch (const std::bad_alloc&) {
        saved.reason = "out of memory";  // a body too big to gather
    } catch (...) {
        // A control that failed: the one message all the same.
    }
    if (!saved) {
        diagnose("cannot save " + schemaFilePath(schemaFolder, schemaName), saved.reason);
        m_controls.messages->showMessage(texts::kSaveFailed, texts::kProgramTitle);
    }
}

void SchemaEditor::load(TextView schemaName, TextView schemaFolder) {
    loadFile(schemaFilePath(schemaFolder, schemaName));
}

void SchemaEditor::loadFile(const std::string& path) {
    std::string failure;
    try {
        failure = applyLoad(path);
    } catch (...) {
        failure = "a control could not take what was read";
    }
    if (!failure.empty()) {
        diagnose("cannot load " + path, failure);
        m_controls.messages->showMessage(texts::kLoadFailed, texts::kProgramTitle);
    }
}

void SchemaEditor::diagnose(const std::string& what, const std::string& reason) const {
    if (m_controls.diagnostics != nullptr) {
        *m_controls.diagnostics << "lorekeep: " << what << ": "
                                << (reason.empty() ? "unknown reason" : reason) << std::endl;
    }
}

std::string SchemaEditor::applyLoad(const std::string& path) {
    // Nothing in the window changes until the whole file has been read, and
    // nothing at all when a field is longer than its box may hold: the window
    // never shows a cut text as if it were the file's.
    const LoadResult loaded = loadSchemaFile(path);
    if (!std::ranges::all_of(loaded.read.records, fitsTheWindow)) {
        return "a field is longer than its box holds";
    }
    for (std::size_t i = 0; i < loaded.read.records.size(); ++i) {
        const RecordRead& record = loaded.read.records[i];
        LanguageControls& controls = m_controls.languages[i];
        if (record.font) {
            if (record.font->entry >= 0) {
                m_controls.fontBox->setCurrentEntry(record.font->entry);
            } else {
                m_controls.fontBox->setEditText(record.font->text);
            }
        }
        if (record.title) {
            controls.title->setText(*record.title);
        }
        if (record.body) {
            // Raises the editor's change notification: its preview follows
            // before the next language is applied.
            controls.body->replaceText(*record.body);
        }
    }
    return loaded.ok ? std::string() : loaded.reason;
}

}  // namespace lorekeep::editor
