#pragma once

#include <QTextEdit>
#include <functional>

#include "editor/controls.hpp"

namespace lorekeep::ui {

// The rich-text box of the rtbText array: a language editor or a preview
// pane. It holds plain text only (pasting drops formatting); a preview pane
// also carries the colours and paragraph alignments that the renderer gives it.
//
// Every character of the core's text is one position of the document: a
// line-break character (CR) or a line feed becomes a paragraph end and reads
// back as the character it was.
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

    // editor::PreviewPane: the document built in one pass.
    void showPreview(const markup::RenderedPreview& preview) override;

    // The colour of the character at a position; invalid for the default colour.
    QColor characterColour(std::size_t position) const;
    markup::Alignment paragraphAlignment(int paragraph) const;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    // Plain text only, and never more than the box can lay out.
    void insertFromMimeData(const QMimeData* source) override;

  private:
    std::size_t length() const;
    std::size_t selectionLength() const;
    // The anchor at the end and the caret at `offset`.
    void selectToEnd(std::size_t offset);
};

}  // namespace lorekeep::ui
