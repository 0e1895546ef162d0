#pragma once

#include <QMenu>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextEdit>
#include <functional>
#include <optional>
#include <vector>

#include "editor/controls.hpp"

namespace lorekeep::ui {

// A box of the rtbText array, over either of the toolkit's text views: the
// body editors are plain-text views, whose layout places only the blocks that
// changed and those in sight; the preview panes are rich-text views, for
// their colours and alignments. Both hold plain text only (pasting drops
// formatting) in the blocks that block_text.hpp describes, so that every
// character of the core's text is one position of the document.
template <class Edit>
class TextBox : public Edit, public editor::EditorBox {
  public:
    explicit TextBox(QWidget* parent = nullptr);

    // Called for each typed character before it is inserted. The handler may
    // change the code; 0 suppresses the character.
    std::function<void(int& code)> onCharacterTyped;

    // editor::EditorBox
    Text plainText() const override;
    std::size_t textLength() const override { return length(); }
    Text textBetween(std::size_t start, std::size_t end) const override;
    void replaceRange(std::size_t start, std::size_t length, TextView text) override;
    void beep() override;
    std::size_t caretPosition() const override;
    std::size_t selectionEnd() const override;
    void setCaretPosition(std::size_t position) override;
    void select(std::size_t start, std::size_t length) override;
    void giveFocus() override;

    // The one change since the last call, or nothing when the box cannot
    // tell (then the whole text may differ).
    std::optional<editor::TextChange> takeChange();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    // Plain text only, and never more than the box can lay out.
    void insertFromMimeData(const QMimeData* source) override;
    // The characters exactly as the text holds them.
    QMimeData* createMimeDataFromSelection() const override;

    std::size_t length() const;
    std::size_t selectionLength() const;
    // The anchor at the end and the caret at `offset`.
    void selectToEnd(std::size_t offset);
    void showSelection(std::size_t caret, std::size_t selectionLength);
    // Replaces the selection as typing would, as one edit, caret behind.
    void replaceSelection(TextView text);
    void documentChanged(int position, int removed, int added);
    // Where a shown block's layout has its origin in the viewport.
    QPointF blockOrigin(const QTextBlock& block) const;

    // The change not yet taken: none, one, or more than one (unknown).
    enum class Pending { Nothing, One, Unknown };
    Pending m_pending = Pending::Nothing;
    std::size_t m_changeStart = 0;
    std::size_t m_changeRemoved = 0;
    std::size_t m_changeAdded = 0;
    std::size_t m_lastLength = 0;
    // The document is being changed to show a preview: no change of the text.
    bool m_showingPreview = false;
    // The text was changed by something other than a preview.
    bool m_previewStale = false;
    // Some block end stands for a character that must be drawn.
    bool m_drawsBlockEnds = false;
    // The next character typed starts an undo step of its own.
    bool m_newUndoStep = true;
    // A copy carries HTML beside the exact text.
    bool m_copiesFormatting = false;
};

extern template class TextBox<QTextEdit>;
extern template class TextBox<QPlainTextEdit>;

// A language's body editor.
class PlainTextBox : public TextBox<QPlainTextEdit> {
    Q_OBJECT

  public:
    explicit PlainTextBox(QWidget* parent = nullptr) : TextBox(parent) {}

    // The blocks the viewport shows, top to bottom.
    std::vector<QTextBlock> visibleBlocks() const;

    // Adds to the context menu for a place in the viewport, above the
    // toolkit's own entries.
    std::function<void(QMenu& menu, QPoint at)> extendContextMenu;

  protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
};

}  // namespace lorekeep::ui
