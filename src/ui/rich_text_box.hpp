#pragma once

#include <QTextEdit>

#include "ui/text_box.hpp"

namespace lorekeep::ui {

// A language's preview pane: the text box that also carries the colours and
// paragraph alignments that the renderer gives it.
class RichTextBox : public TextBox<QTextEdit>, public editor::PreviewPane {
    Q_OBJECT

  public:
    explicit RichTextBox(QWidget* parent = nullptr);

    // editor::PreviewPane: the document built in one pass, or changed only
    // where the preview changed.
    void showPreview(const markup::RenderedPreview& preview) override;
    void showPreviewChange(const markup::PreviewPatch& patch,
                           const std::function<markup::RenderedPreview()>& whole) override;

    // A copy of a selection carries its formatting (HTML, with its colours
    // and alignments) beside the exact text.
    void setCopiesFormatting(bool copies) { m_copiesFormatting = copies; }

    // The colour of the character at a position; invalid for the default colour.
    QColor characterColour(std::size_t position) const;
    markup::Alignment paragraphAlignment(int paragraph) const;

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QTextCharFormat formatAt(std::size_t position) const;
    // While the box is not shown its document has no page, and the toolkit's
    // layout then ignores every change, where it would otherwise walk every
    // block behind each one. Shown again, it is laid out afresh as far as it
    // is seen.
    void suspendLayout();
    void resumeLayout();

    bool m_layoutSuspended = false;
};

}  // namespace lorekeep::ui
