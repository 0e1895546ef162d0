#include "ui/rich_text_box.hpp"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextLayout>
#include <utility>

#include "editor/schema_editor.hpp"
#include "ui/qt_text.hpp"

namespace lorekeep::ui {

namespace {

// The character format property of a block end that holds the character it
// stands for. It travels with the block end itself: removing text around it,
// undo and redo keep it right, where a block's own state or format may be
// taken over by a neighbour when blocks merge.
constexpr int kEndedBy = QTextFormat::UserProperty;
// A stretch without a line break this long is cut into blocks at the next
// space; a run this long without a space is cut wherever it may be (the
// toolkit breaks the lines of such a run in time that grows with the square
// of its length).
constexpr std::size_t kBlockLength = 1024;
constexpr std::size_t kLongestRun = 256;

// What the block end in front of `block` stands for.
char16_t endedBy(const QTextBlock& block) {
    const QVariant value = block.charFormat().property(kEndedBy);
    return value.isValid() ? static_cast<char16_t>(value.toInt()) : u'\n';
}

// Characters that the toolkit itself turns into block ends when inserted.
bool endsBlock(char16_t c) {
    return markup::isParagraphSeparator(c) || c == QChar::ParagraphSeparator || c == u'\xfdd0' ||
           c == u'\xfdd1';  // the frame marks
}

bool isBlank(char16_t c) {
    return c == u' ' || c == u'\t';
}

// A character that may stand at a block end when there is no space to use:
// not half of a surrogate pair, not a mark that belongs to the one before.
bool mayEndBlock(char16_t c) {
    return !QChar::isSurrogate(c) && !QChar(c).isMark();
}

Qt::Alignment toQt(markup::Alignment alignment) {
    switch (alignment) {
        case markup::Alignment::Right:
            return Qt::AlignRight;
        case markup::Alignment::Centre:
            return Qt::AlignHCenter;
        case markup::Alignment::Left:
            break;
    }
    return Qt::AlignLeft;
}

QTextCharFormat colourFormat(const markup::CharColour& colour) {
    QTextCharFormat format;
    if (colour) {
        format.setForeground(QColor(colour->red, colour->green, colour->blue));
    }
    return format;
}

// Writes text at a cursor, block by block: every line break ends a block,
// and so does a space (or another character) in a long stretch without one.
// A new paragraph's block takes the next of `alignments`, if given.
class BlockWriter {
  public:
    BlockWriter(QTextCursor& cursor, const std::vector<markup::Alignment>* alignments = nullptr,
                std::size_t paragraph = 0)
        : m_cursor(cursor),
          m_alignments(alignments),
          m_paragraph(paragraph),
          m_blockFormat(cursor.blockFormat()),
          m_sinceBlockEnd(static_cast<std::size_t>(cursor.positionInBlock())) {}

    void write(TextView text, const QTextCharFormat& format) {
        std::size_t start = 0;
        for (std::size_t k = 0; k < text.size(); ++k) {
            const char16_t c = text[k];
            if (!endsBlock(c) && !(m_sinceBlockEnd >= kBlockLength && isBlank(c)) &&
                !(m_sinceBlank >= kLongestRun && mayEndBlock(c))) {
                ++m_sinceBlockEnd;
                m_sinceBlank = isBlank(c) ? 0 : m_sinceBlank + 1;
                continue;
            }
            if (k > start) {
                m_cursor.insertText(toQString(text.substr(start, k - start)), format);
            }
            endBlock(c, format);
            start = k + 1;
        }
        if (text.size() > start) {
            m_cursor.insertText(toQString(text.substr(start)), format);
        }
    }

    // Each stretch of one colour in its own format.
    void writeRuns(TextView text, const std::vector<markup::ColourRun>& colours) {
        for (std::size_t run = 0; run < colours.size(); ++run) {
            const std::size_t end = run + 1 < colours.size() ? colours[run + 1].start : text.size();
            write(text.substr(colours[run].start, end - colours[run].start),
                  colourFormat(colours[run].colour));
        }
    }

    // A block end stands for a character that is neither blank nor a break.
    bool drawsBlockEnds() const { return m_drawsBlockEnds; }
    std::size_t paragraph() const { return m_paragraph; }

  private:
    void endBlock(char16_t c, const QTextCharFormat& format) {
        if (markup::isParagraphSeparator(c)) {
            ++m_paragraph;
        } else if (!endsBlock(c) && !isBlank(c)) {
            m_drawsBlockEnds = true;
        }
        if (m_alignments != nullptr && m_paragraph < m_alignments->size() &&
            m_blockFormat.alignment() != toQt((*m_alignments)[m_paragraph])) {
            m_blockFormat.setAlignment(toQt((*m_alignments)[m_paragraph]));
        }
        QTextCharFormat end = format;
        end.setProperty(kEndedBy, static_cast<int>(c));
        m_cursor.insertBlock(m_blockFormat, end);
        m_sinceBlockEnd = 0;
        m_sinceBlank = 0;
    }

    QTextCursor& m_cursor;
    const std::vector<markup::Alignment>* m_alignments;
    std::size_t m_paragraph;
    QTextBlockFormat m_blockFormat;  // the cursor's block's
    std::size_t m_sinceBlockEnd;
    std::size_t m_sinceBlank = 0;  // characters since a blank or a block end
    bool m_drawsBlockEnds = false;
};

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

RichTextBox::RichTextBox(QWidget* parent) : QTextEdit(parent) {
    setAcceptRichText(false);
    setTabChangesFocus(true);
    setLineWrapMode(QTextEdit::WidgetWidth);
    connect(document(), &QTextDocument::contentsChange, this, &RichTextBox::documentChanged);
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

std::size_t RichTextBox::length() const {
    return static_cast<std::size_t>(document()->characterCount() - 1);
}

std::size_t RichTextBox::selectionLength() const {
    return static_cast<std::size_t>(textCursor().selectionEnd() - textCursor().selectionStart());
}

Text RichTextBox::plainText() const {
    return textBetween(0, length());
}

Text RichTextBox::textBetween(std::size_t start, std::size_t end) const {
    Text text;
    text.reserve(end - start);
    for (QTextBlock block = document()->findBlock(static_cast<int>(start));
         block.isValid() && static_cast<std::size_t>(block.position()) < end;
         block = block.next()) {
        const auto position = static_cast<std::size_t>(block.position());
        const QString piece = block.text();
        const auto pieceEnd = position + static_cast<std::size_t>(piece.size());
        const std::size_t from = std::max(start, position) - position;
        const std::size_t to = std::min(end, pieceEnd) - position;
        if (to > from) {
            text.append(reinterpret_cast<const char16_t*>(piece.utf16()) + from, to - from);
        }
        if (pieceEnd >= start && pieceEnd < end && block.next().isValid()) {
            text.push_back(endedBy(block.next()));
        }
    }
    return text;
}

void RichTextBox::documentChanged(int position, int removed, int added) {
    const std::size_t before = m_lastLength;
    m_lastLength = length();
    if (m_showingPreview) {
        return;
    }
    m_previewStale = true;
    // The toolkit counts the document's closing block end in some changes;
    // the text itself never holds it.
    const auto start = static_cast<std::size_t>(position);
    const std::size_t gone =
        std::min(static_cast<std::size_t>(removed), before - std::min(before, start));
    const std::size_t kept = before - gone;
    if (m_pending != Pending::Nothing || start > before || m_lastLength < kept ||
        m_lastLength - kept > static_cast<std::size_t>(added)) {
        m_pending = Pending::Unknown;
        return;
    }
    m_pending = Pending::One;
    m_changeStart = start;
    m_changeRemoved = gone;
    m_changeAdded = m_lastLength - kept;
}

std::optional<editor::TextChange> RichTextBox::takeChange() {
    const Pending pending = std::exchange(m_pending, Pending::Nothing);
    if (pending == Pending::Unknown) {
        return std::nullopt;
    }
    if (pending == Pending::Nothing) {
        return editor::TextChange{};
    }
    return editor::TextChange{m_changeStart, m_changeRemoved,
                              textBetween(m_changeStart, m_changeStart + m_changeAdded)};
}

void RichTextBox::replaceRange(std::size_t start, std::size_t length, TextView text) {
    if (length == 0 && text.empty()) {
        // Nothing to change, but whoever set the text still hears of it.
        emit textChanged();
        return;
    }
    // One edit block: one undo step and one text-changed notification. The
    // block that holds `start` keeps its own start's character; each new
    // block records its own.
    m_newUndoStep = true;
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    cursor.setPosition(static_cast<int>(start));
    cursor.setPosition(static_cast<int>(start + length), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    BlockWriter writer(cursor);
    writer.write(text, QTextCharFormat());
    m_drawsBlockEnds = m_drawsBlockEnds || writer.drawsBlockEnds();
    cursor.endEditBlock();
}

void RichTextBox::beep() {
    QApplication::beep();
}

std::size_t RichTextBox::caretPosition() const {
    return static_cast<std::size_t>(textCursor().selectionStart());
}

void RichTextBox::setCaretPosition(std::size_t position) {
    QTextCursor cursor = textCursor();
    cursor.setPosition(static_cast<int>(std::min(position, length())));
    setTextCursor(cursor);
}

void RichTextBox::giveFocus() {
    setFocus(Qt::OtherFocusReason);
}

void RichTextBox::selectToEnd(std::size_t offset) {
    // The anchor at the end and the caret at the start: the caret position is
    // the selection's start, as the commands count it.
    const std::size_t end = length();
    QTextCursor cursor = textCursor();
    cursor.setPosition(static_cast<int>(end));
    cursor.setPosition(static_cast<int>(std::min(offset, end)), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

void RichTextBox::showPreview(const markup::RenderedPreview& preview) {
    // Built in a document of its own, which no layout follows while it grows
    // (a shown box's layout takes several times as long as the text itself
    // for every block added), and then put in the old one's place.
    QTextDocument* old = document();
    auto* doc = new QTextDocument(this);
    doc->setDefaultFont(old->defaultFont());
    doc->setDefaultTextOption(old->defaultTextOption());
    doc->setDocumentMargin(old->documentMargin());
    doc->setUndoRedoEnabled(false);
    QTextCursor cursor(doc);
    // In an edit block a cursor does not ask the layout where it stands.
    cursor.beginEditBlock();
    QTextBlockFormat blockFormat;
    blockFormat.setAlignment(
        toQt(preview.paragraphs.empty() ? markup::Alignment::Left : preview.paragraphs[0]));
    cursor.setBlockFormat(blockFormat);
    BlockWriter writer(cursor, &preview.paragraphs);
    writer.writeRuns(preview.text, preview.colours);
    cursor.endEditBlock();
    doc->setUndoRedoEnabled(old->isUndoRedoEnabled());
    m_drawsBlockEnds = writer.drawsBlockEnds();
    m_showingPreview = true;
    // The box deletes a document it owns when another takes its place; its
    // first one it leaves alone.
    const QPointer<QTextDocument> replaced(old);
    setDocument(doc);
    delete replaced.data();
    if (m_layoutSuspended) {
        suspendLayout();
    }
    connect(doc, &QTextDocument::contentsChange, this, &RichTextBox::documentChanged);
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

void RichTextBox::showSelection(std::size_t caret, std::size_t selectionLength) {
    if (selectionLength > 0) {
        selectToEnd(caret);
    } else {
        setCaretPosition(caret);
    }
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

void RichTextBox::insertFromMimeData(const QMimeData* source) {
    if (source == nullptr || !source->hasText()) {
        return;
    }
    // Pasted line breaks arrive as the toolkit's own paste would make them:
    // each CR LF, CR or LF one line feed.
    QString pasted = source->text();
    pasted.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    pasted.replace(u'\r', u'\n');
    pasted.replace(QChar::ParagraphSeparator, u'\n');
    if (length() - selectionLength() + static_cast<std::size_t>(pasted.size()) > kMaxBodyLength) {
        beep();
        return;
    }
    replaceSelection(fromQString(pasted));
}

void RichTextBox::replaceSelection(TextView text) {
    const QTextCursor selection = textCursor();
    const auto start = static_cast<std::size_t>(selection.selectionStart());
    replaceRange(start, selectionLength(), text);
    setCaretPosition(start + text.size());
    ensureCursorVisible();
}

QMimeData* RichTextBox::createMimeDataFromSelection() const {
    // The exact characters as text: the toolkit's own plain copy would make
    // every block end a line break.
    auto* mime = new QMimeData;
    const QTextCursor selection = textCursor();
    mime->setText(toQString(textBetween(static_cast<std::size_t>(selection.selectionStart()),
                                        static_cast<std::size_t>(selection.selectionEnd()))));
    if (m_copiesFormatting) {
        mime->setHtml(QTextDocumentFragment(selection).toHtml());
    }
    return mime;
}

void RichTextBox::paintEvent(QPaintEvent* event) {
    QTextEdit::paintEvent(event);
    if (!m_drawsBlockEnds) {
        return;
    }
    // A block end that stands for a visible character shows it at the end
    // of the block's last line, where it stands in the text.
    QPainter painter(viewport());
    const QPointF scrolled(-horizontalScrollBar()->value(), -verticalScrollBar()->value());
    const QTextCursor selection = textCursor();
    const int bottom = viewport()->height();
    for (QTextBlock block = cursorForPosition(QPoint(0, 0)).block(); block.isValid();
         block = block.next()) {
        const QTextLayout* lines = block.layout();
        const QPointF origin = lines->position() + scrolled;
        if (origin.y() > bottom) {
            break;
        }
        const QTextBlock next = block.next();
        const char16_t c = next.isValid() ? endedBy(next) : u' ';
        if (endsBlock(c) || isBlank(c) || lines->lineCount() == 0) {
            continue;
        }
        const int at = block.position() + block.length() - 1;
        const QTextCharFormat format = next.charFormat();
        const QFont font = format.font().resolve(document()->defaultFont());
        const QTextLine line = lines->lineAt(lines->lineCount() - 1);
        const QString shown(QChar{c});
        const QRectF cell(origin.x() + line.cursorToX(block.length() - 1), origin.y() + line.y(),
                          QFontMetricsF(font).horizontalAdvance(shown), line.height());
        QColor pen = format.hasProperty(QTextFormat::ForegroundBrush) ? format.foreground().color()
                                                                      : palette().text().color();
        if (selection.selectionStart() <= at && at < selection.selectionEnd()) {
            painter.fillRect(cell, palette().highlight());
            pen = palette().highlightedText().color();
        }
        painter.setFont(font);
        painter.setPen(pen);
        painter.drawText(QPointF(cell.left(), cell.top() + line.ascent()), shown);
    }
}

void RichTextBox::keyPressEvent(QKeyEvent* event) {
    // Redo answers Ctrl+Y as well as the platform's own keys (Ctrl+Shift+Z).
    if (event->key() == Qt::Key_Y && event->modifiers() == Qt::ControlModifier) {
        redo();
        event->accept();
        return;
    }
    const QString typed = event->text();
    const bool isCharacter = typed.size() == 1 && (typed[0].isPrint() || typed[0] == u'\r' ||
                                                   typed[0] == u'\n' || typed[0] == u'\t');
    // Every key that delivers a carriage return counts as Enter, whatever is
    // held with it; other characters typed with Ctrl or Alt are shortcuts.
    const bool enter = isCharacter && typed[0] == u'\r';
    const bool shortcut = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (enter && !onCharacterTyped) {
        // A pane's Enter ends a paragraph as a pasted line feed would.
        replaceSelection(u"\n");
        event->accept();
        return;
    }
    if (!isCharacter || !onCharacterTyped || (shortcut && !enter)) {
        QTextEdit::keyPressEvent(event);
        m_newUndoStep = true;  // a deletion, a move: typing after it is a step of its own
        return;
    }
    if (!enter && length() - selectionLength() >= kMaxBodyLength) {
        beep();  // the body is as long as it may be
        event->accept();
        return;
    }
    int code = typed[0].unicode();
    const int original = code;
    onCharacterTyped(code);
    if (code == 0) {
        event->accept();
        return;
    }
    // The toolkit merges typing into the edit before it when they touch; an
    // edit block of its own keeps the first character typed after another
    // edit apart (the characters typed after it still join it).
    QTextCursor step(document());
    const bool ownStep = std::exchange(m_newUndoStep, false);
    if (ownStep) {
        step.beginEditBlock();
    }
    if (code == original) {
        QTextEdit::keyPressEvent(event);
    } else {
        insertPlainText(QString(QChar(static_cast<char16_t>(code))));
        event->accept();
    }
    if (ownStep) {
        step.endEditBlock();
    }
}

}  // namespace lorekeep::ui
