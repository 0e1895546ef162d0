#pragma once

#include <QTextEdit>
#include <functional>
#include <optional>

#include "editor/controls.hpp"

namespace lorekeep::ui {

// The rich-text box of the rtbText array: a language editor or a preview
// pane. It holds plain text only (pasting drops formatting); a preview pane
// also carries the colours and paragraph alignments that the renderer gives it.
//
// Every character of the core's text is one position of the document, so
// that positions need no translation. A line-break character (CR) or a line
// feed becomes a block end; so does a space now and then in a long stretch
// without one (or, in a stretch without spaces, some other character, which
// the box then draws itself), because the toolkit lays out a block as a whole
// and would take time in proportion to the whole body on every keystroke.
// Each block records which character ended the one before it, and reads back
// as that character.
class RichTextBox : public QTextEdit, public editor::EditorBox, public editor::PreviewPane {
    Q_OBJECT

  public:
    explicit RichTextBox(QWidget* parent = nullptr);

    // Called for each typed character before it is inserted. The handler may
    // change the code; 0 suppresses the character.
    std::function<void(int& code)> onCharacterTyped;

    // editor::EditorBox
    Text plainText() const override;
    void replaceRange(std::size_t start, std::size_t length, TextView text) override;
    void beep() override;
    std::size_t caretPosition() const override;
    void setCaretPosition(std::size_t position) override;
    void giveFocus() override;

    // The one change since the last call, or nothing when the box cannot
    // tell (then the whole text may differ).
    std::optional<editor::TextChange> takeChange();

    // editor::PreviewPane: the document built in one pass, or changed only
    // where the preview changed.
    void showPreview(const markup::RenderedPreview& preview) override;
    void showPreviewChange(const markup::PreviewPatch& patch,
                           const std::function<markup::RenderedPreview()>& whole) override;

    // A copy of a selection carries its formatting (HTML, with its colours
    // and alignments) beside the exact text, as a preview pane's does.
    void setCopiesFormatting(bool copies) { m_copiesFormatting = copies; }

    // The colour of the character at a position; invalid for the default colour.
    QColor characterColour(std::size_t position) const;
    markup::Alignment paragraphAlignment(int paragraph) const;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    // Plain text only, and never more than the box can lay out.
    void insertFromMimeData(const QMimeData* source) override;
    // The characters exactly as the text holds them.
    QMimeData* createMimeDataFromSelection() const override;

  private:
    std::size_t length() const;
    std::size_t selectionLength() const;
    Text textBetween(std::size_t start, std::size_t end) const;
    QTextCharFormat formatAt(std::size_t position) const;
    // The anchor at the end and the caret at `offset`.
    void selectToEnd(std::size_t offset);
    void showSelection(std::size_t caret, std::size_t selectionLength);
    // Replaces the selection as typing would, as one edit, caret behind.
    void replaceSelection(TextView text);
    void documentChanged(int position, int removed, int added);
    // While the box is not shown its document has no page, and the toolkit's
    // layout then ignores every change, where it would otherwise walk every
    // block behind each one. Shown again, it is laid out afresh as far as it
    // is seen.
    void suspendLayout();
    void resumeLayout();

    // The change not yet taken: none, one, or more than one (unknown).
    enum class Pending { Nothing, One, Unknown };
    Pending m_pending = Pending::Nothing;
    std::size_t m_changeStart = 0;
    std::size_t m_changeRemoved = 0;
    std::size_t m_changeAdded = 0;
    std::size_t m_lastLength = 0;
    // The pane's text was changed by something other than a preview.
    bool m_previewStale = false;
    bool m_showingPreview = false;
    // Some block end stands for a character that must be drawn.
    bool m_drawsBlockEnds = false;
    bool m_layoutSuspended = false;
    // The next character typed starts an undo step of its own.
    bool m_newUndoStep = true;
    bool m_copiesFormatting = false;
};

}  // namespace lorekeep::ui
