#pragma once

#include <QTextEdit>
#include <functional>

#include "document/controls.hpp"
#include "markup/preview_pane.hpp"

namespace lorekeep::ui {

// The rich-text box of the rtbText array: a language editor or a preview
// pane. It holds plain text only (pasting drops formatting); the preview panes
// also carry the colours and paragraph alignments that the renderer gives them.
//
// Every character of the core's text is one position of the document: a
// line-break character (CR) or a line feed becomes a paragraph end and reads
// back as the character it was.
class RichTextBox : public QTextEdit, public EditorBox, public markup::PreviewPane {
    Q_OBJECT

  public:
    explicit RichTextBox(QWidget* parent = nullptr);

    // Called for each typed character before it is inserted. The handler may
    // change the code; 0 suppresses the character.
    std::function<void(int& code)> onCharacterTyped;

    // EditorBox
    Text PlainText() const override;
    void SetPlainText(TextView text) override;
    std::size_t Caret() const override;
    void SetCaret(std::size_t position) override;
    void Focus() override;

    // PreviewPane
    Text ReadText() const override { return PlainText(); }
    void SetText(TextView text) override;
    void ReplaceText(std::size_t offset, std::size_t count, TextView with) override;
    void PlaceCaret(std::size_t offset) override { SetCaret(offset); }
    void SelectToEnd(std::size_t offset) override;
    void ColourSelection(markup::Rgb colour) override;
    void AlignSelection(markup::Alignment alignment) override;
    void ShowRendered(const markup::RenderedPreview& preview) override;

    // The colour of the character at a position; invalid for the default colour.
    QColor CharacterColour(std::size_t position) const;
    markup::Alignment ParagraphAlignment(int paragraph) const;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    // Plain text only, and never more than the box can lay out.
    void insertFromMimeData(const QMimeData* source) override;

  private:
    std::size_t Length() const;
    // Inserts text at the cursor, one paragraph end per separator character.
    static void InsertWithSeparators(QTextCursor& cursor, TextView text,
                                     const QTextCharFormat& format);
};

}  // namespace lorekeep::ui
