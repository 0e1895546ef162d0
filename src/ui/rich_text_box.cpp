#include "ui/rich_text_box.hpp"

#include <QPointer>
#include <QTextBlock>
#include <QTextDocument>

#include "ui/block_text.hpp"

namespace lorekeep::ui {

namespace {

// Gives a block an alignment; false if it had it already.
bool align(const QTextBlock& block, Qt::Alignment alignment) {
    if ((block.blockFormat().alignment() & Qt::AlignHorizontal_Mask) == alignment) {
        return false;
    }
    QTextBlockFormat format = block.blockFormat();
    format.setAlignment(alignment);
    QTextCursor(block).setBlockFormat(format);
    return true;
}

}  // namespace

RichTextBox::RichTextBox(QWidget* parent) : TextBox(parent) {
    suspendLayout();
}

void RichTextBox::suspendLayout() {
    m_layoutSuspended = true;
    document()->setPageSize(QSizeF(0, 0));
}

void RichTextBox::resumeLayout() {
    if (!m_layoutSuspended) {
        return;
    }
    m_layoutSuspended = false;
    // The page the toolkit itself gives a document: as wide as the viewport.
    document()->setPageSize(
        QSizeF(lineWrapMode() == QTextEdit::NoWrap ? 0 : viewport()->width(), -1));
    ensureCursorVisible();
}

void RichTextBox::showEvent(QShowEvent* event) {
    resumeLayout();
    QTextEdit::showEvent(event);
}

void RichTextBox::hideEvent(QHideEvent* event) {
    QTextEdit::hideEvent(event);
    suspendLayout();
}

void RichTextBox::resizeEvent(QResizeEvent* event) {
    QTextEdit::resizeEvent(event);
    if (m_layoutSuspended) {
        suspendLayout();  // the toolkit gave the document its page again
    }
}

namespace {

// Writes a whole preview at a cursor that stands in an empty document.
bool writePreview(QTextCursor& cursor, const markup::RenderedPreview& preview) {
    // In an edit block a cursor does not ask the layout where it stands.
    cursor.beginEditBlock();
    QTextBlockFormat blockFormat;
    blockFormat.setAlignment(
        toQt(preview.paragraphs.empty() ? markup::Alignment::Left : preview.paragraphs[0]));
    cursor.setBlockFormat(blockFormat);
    cursor.setBlockCharFormat(QTextCharFormat());
    BlockWriter writer(cursor, &preview.paragraphs);
    writer.writeRuns(preview.text, preview.colours);
    cursor.endEditBlock();
    return writer.drawsBlockEnds();
}

}  // namespace

void RichTextBox::showPreview(const markup::RenderedPreview& preview) {
    m_showingPreview = true;
    QTextDocument* old = document();
    const bool undo = old->isUndoRedoEnabled();
    if (m_layoutSuspended) {
        // Not shown, the document has no page and its layout ignores every
        // change: it is written again in place. (A new document would be
        // laid out as it is set, and then on and on in the background at
        // the width of no page, a character to a line: seconds for a long
        // body.)
        old->setUndoRedoEnabled(false);
        QTextCursor cursor(old);
        cursor.select(QTextCursor::Document);
        cursor.removeSelectedText();
        m_drawsBlockEnds = writePreview(cursor, preview);
        old->setUndoRedoEnabled(undo);
    } else {
        // Shown: built in a document of its own, which no layout follows
        // while it grows (a shown box's layout takes several times as long
        // as the text itself for every block added), and then put in the
        // old one's place.
        auto* doc = new QTextDocument(this);
        doc->setDefaultFont(old->defaultFont());
        doc->setDefaultTextOption(old->defaultTextOption());
        doc->setDocumentMargin(old->documentMargin());
        doc->setUndoRedoEnabled(false);
        QTextCursor cursor(doc);
        m_drawsBlockEnds = writePreview(cursor, preview);
        doc->setUndoRedoEnabled(undo);
        // The box deletes a document it owns when another takes its place;
        // its first one it leaves alone.
        const QPointer<QTextDocument> replaced(old);
        setDocument(doc);
        delete replaced.data();
        connect(doc, &QTextDocument::contentsChange, this, &RichTextBox::documentChanged);
    }
    m_lastLength = length();
    m_showingPreview = false;
    m_previewStale = false;
    showSelection(preview.caret, preview.selectionLength);
}

void RichTextBox::showPreviewChange(const markup::PreviewPatch& patch,
                                    const std::function<markup::RenderedPreview()>& whole) {
    // A change of much of the text is quicker built afresh.
    if (m_previewStale || patch.start + patch.removed > length() ||
        patch.text.size() + patch.removed > length() / 4 + kBlockLength) {
        showPreview(whole());
        return;
    }
    QTextDocument* doc = document();
    const bool undo = doc->isUndoRedoEnabled();
    doc->setUndoRedoEnabled(false);
    m_showingPreview = true;
    QTextCursor cursor(doc);
    cursor.beginEditBlock();
    cursor.setPosition(static_cast<int>(patch.start));
    cursor.setPosition(static_cast<int>(patch.start + patch.removed), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    const std::size_t first = patch.startParagraph - patch.firstParagraph;
    BlockWriter writer(cursor, &patch.paragraphs, first);
    writer.writeRuns(patch.text, patch.colours);
    m_drawsBlockEnds = m_drawsBlockEnds || writer.drawsBlockEnds();

    // The blocks that were there before take their paragraphs' alignments:
    // back from the change through the paragraphs it names, and on from its
    // end. The first and the last paragraph named may reach far beyond the
    // change; their blocks there share one alignment, so the walk stops at
    // the first that has it already.
    const auto wanted = [&patch](std::size_t paragraph) {
        return toQt(patch.paragraphs[std::min(paragraph, patch.paragraphs.size() - 1)]);
    };
    if (!patch.paragraphs.empty()) {
        std::size_t paragraph = first;
        // The block at the change may have taken over a later block's format.
        const QTextBlock changed = doc->findBlock(static_cast<int>(patch.start));
        for (QTextBlock block = changed; block.isValid(); block = block.previous()) {
            if (!align(block, wanted(paragraph)) && paragraph == 0 && block != changed) {
                break;
            }
            if (markup::isParagraphSeparator(endedBy(block)) && block != doc->begin()) {
                if (paragraph == 0) {
                    break;
                }
                --paragraph;
            }
        }
        paragraph = writer.paragraph();
        for (QTextBlock block = cursor.block();
             block.isValid() && paragraph < patch.paragraphs.size(); block = block.next()) {
            if (!align(block, wanted(paragraph)) && paragraph + 1 == patch.paragraphs.size() &&
                block != cursor.block()) {
                break;
            }
            if (block.next().isValid() && markup::isParagraphSeparator(endedBy(block.next()))) {
                ++paragraph;
            }
        }
    }
    cursor.endEditBlock();
    doc->setUndoRedoEnabled(undo);
    m_showingPreview = false;
    showSelection(patch.caret, patch.selectionLength);
}

QTextCharFormat RichTextBox::formatAt(std::size_t position) const {
    // A block end's own format is the next block's; a cursor would report
    // the format of the character after it.
    const QTextBlock block = document()->findBlock(static_cast<int>(position));
    if (static_cast<std::size_t>(block.position() + block.length() - 1) == position &&
        block.next().isValid()) {
        return block.next().charFormat();
    }
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(position));
    cursor.setPosition(static_cast<int>(position + 1), QTextCursor::KeepAnchor);
    return cursor.charFormat();
}

QColor RichTextBox::characterColour(std::size_t position) const {
    const QTextCharFormat format = formatAt(position);
    return format.hasProperty(QTextFormat::ForegroundBrush) ? format.foreground().color()
                                                            : QColor();
}

markup::Alignment RichTextBox::paragraphAlignment(int paragraph) const {
    QTextBlock block = document()->begin();
    for (int p = 0; p < paragraph && block.isValid();) {
        block = block.next();
        p += block.isValid() && markup::isParagraphSeparator(endedBy(block)) ? 1 : 0;
    }
    const Qt::Alignment alignment = block.blockFormat().alignment() & Qt::AlignHorizontal_Mask;
    if (alignment & Qt::AlignRight) {
        return markup::Alignment::Right;
    }
    if (alignment & Qt::AlignHCenter) {
        return markup::Alignment::Centre;
    }
    return markup::Alignment::Left;
}

}  // namespace lorekeep::ui
