#include "ui/text_box.hpp"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <type_traits>
#include <utility>

#include "editor/schema_editor.hpp"
#include "ui/block_text.hpp"
#include "ui/qt_text.hpp"

namespace lorekeep::ui {

namespace {

template <class Edit>
constexpr bool kPlain = std::is_same_v<Edit, QPlainTextEdit>;

}  // namespace

template <class Edit>
TextBox<Edit>::TextBox(QWidget* parent) : Edit(parent) {
    if constexpr (!kPlain<Edit>) {
        this->setAcceptRichText(false);
    }
    this->setTabChangesFocus(true);
    this->setLineWrapMode(Edit::WidgetWidth);
    QObject::connect(this->document(), &QTextDocument::contentsChange, this,
                     &TextBox::documentChanged);
}

template <class Edit>
std::size_t TextBox<Edit>::length() const {
    return documentLength(*this->document());
}

template <class Edit>
std::size_t TextBox<Edit>::selectionLength() const {
    const QTextCursor cursor = this->textCursor();
    return static_cast<std::size_t>(cursor.selectionEnd() - cursor.selectionStart());
}

template <class Edit>
Text TextBox<Edit>::plainText() const {
    return ui::textBetween(*this->document(), 0, length());
}

template <class Edit>
Text TextBox<Edit>::textBetween(std::size_t start, std::size_t end) const {
    return ui::textBetween(*this->document(), start, end);
}

template <class Edit>
void TextBox<Edit>::documentChanged(int position, int removed, int added) {
    const std::size_t before = m_lastLength;
    m_lastLength = length();
    // Whatever changed the text (an undo, a redo, a paste from the context
    // menu), typing after it starts a step of its own.
    m_newUndoStep = true;
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

template <class Edit>
std::optional<editor::TextChange> TextBox<Edit>::takeChange() {
    const Pending pending = std::exchange(m_pending, Pending::Nothing);
    if (pending == Pending::Unknown) {
        return std::nullopt;
    }
    if (pending == Pending::Nothing) {
        return editor::TextChange{};
    }
    return editor::TextChange{
        m_changeStart, m_changeRemoved,
        ui::textBetween(*this->document(), m_changeStart, m_changeStart + m_changeAdded)};
}

template <class Edit>
void TextBox<Edit>::replaceRange(std::size_t start, std::size_t length, TextView text) {
    if (length == 0 && text.empty()) {
        // Nothing to change, but whoever set the text still hears of it.
        emit this->textChanged();
        return;
    }
    // One edit block: one undo step and one text-changed notification. The
    // block that holds `start` keeps its own start's character; each new
    // block records its own.
    QTextCursor cursor(this->document());
    cursor.beginEditBlock();
    cursor.setPosition(static_cast<int>(start));
    cursor.setPosition(static_cast<int>(start + length), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    BlockWriter writer(cursor);
    writer.write(text, QTextCharFormat());
    m_drawsBlockEnds = m_drawsBlockEnds || writer.drawsBlockEnds();
    cursor.endEditBlock();
}

template <class Edit>
void TextBox<Edit>::beep() {
    QApplication::beep();
}

template <class Edit>
std::size_t TextBox<Edit>::caretPosition() const {
    return static_cast<std::size_t>(this->textCursor().selectionStart());
}

template <class Edit>
void TextBox<Edit>::setCaretPosition(std::size_t position) {
    QTextCursor cursor = this->textCursor();
    cursor.setPosition(static_cast<int>(std::min(position, length())));
    this->setTextCursor(cursor);
}

template <class Edit>
std::size_t TextBox<Edit>::selectionEnd() const {
    return static_cast<std::size_t>(this->textCursor().selectionEnd());
}

template <class Edit>
void TextBox<Edit>::select(std::size_t start, std::size_t length) {
    const std::size_t end = this->length();
    QTextCursor cursor = this->textCursor();
    cursor.setPosition(static_cast<int>(std::min(start, end)));
    cursor.setPosition(static_cast<int>(std::min(start + length, end)), QTextCursor::KeepAnchor);
    this->setTextCursor(cursor);
    this->ensureCursorVisible();
}

template <class Edit>
void TextBox<Edit>::giveFocus() {
    this->setFocus(Qt::OtherFocusReason);
}

template <class Edit>
void TextBox<Edit>::selectToEnd(std::size_t offset) {
    // The anchor at the end and the caret at the start: the caret position is
    // the selection's start, as the commands count it.
    const std::size_t end = length();
    QTextCursor cursor = this->textCursor();
    cursor.setPosition(static_cast<int>(end));
    cursor.setPosition(static_cast<int>(std::min(offset, end)), QTextCursor::KeepAnchor);
    this->setTextCursor(cursor);
}

template <class Edit>
void TextBox<Edit>::showSelection(std::size_t caret, std::size_t selectionLength) {
    if (selectionLength > 0) {
        selectToEnd(caret);
    } else {
        setCaretPosition(caret);
    }
}

template <class Edit>
void TextBox<Edit>::insertFromMimeData(const QMimeData* source) {
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

template <class Edit>
void TextBox<Edit>::replaceSelection(TextView text) {
    const auto start = static_cast<std::size_t>(this->textCursor().selectionStart());
    replaceRange(start, selectionLength(), text);
    setCaretPosition(start + text.size());
    this->ensureCursorVisible();
}

template <class Edit>
QMimeData* TextBox<Edit>::createMimeDataFromSelection() const {
    // The exact characters as text: the toolkit's own plain copy would make
    // every block end a line break.
    auto* mime = new QMimeData;
    const QTextCursor selection = this->textCursor();
    mime->setText(toQString(ui::textBetween(*this->document(),
                                            static_cast<std::size_t>(selection.selectionStart()),
                                            static_cast<std::size_t>(selection.selectionEnd()))));
    if (m_copiesFormatting) {
        mime->setHtml(htmlBetween(*this->document(),
                                  static_cast<std::size_t>(selection.selectionStart()),
                                  static_cast<std::size_t>(selection.selectionEnd())));
    }
    return mime;
}

template <class Edit>
void TextBox<Edit>::paintEvent(QPaintEvent* event) {
    Edit::paintEvent(event);
    if (!m_drawsBlockEnds) {
        return;
    }
    // A block end that stands for a visible character shows it at the end
    // of the block's last line, where it stands in the text.
    QPainter painter(this->viewport());
    const QTextCursor selection = this->textCursor();
    const int bottom = this->viewport()->height();
    QTextBlock block;
    QPointF origin;  // of the block's layout, in the viewport
    if constexpr (kPlain<Edit>) {
        // A plain-text view stacks its blocks from the first one in sight.
        block = this->firstVisibleBlock();
        origin = this->blockBoundingGeometry(block).translated(this->contentOffset()).topLeft();
    } else {
        block = this->cursorForPosition(QPoint(0, 0)).block();
    }
    for (; block.isValid(); block = block.next()) {
        if constexpr (kPlain<Edit>) {
            if (!block.isVisible()) {
                continue;
            }
        } else {
            origin = block.layout()->position() + QPointF(-this->horizontalScrollBar()->value(),
                                                          -this->verticalScrollBar()->value());
        }
        if (origin.y() > bottom) {
            break;
        }
        const QTextLayout* lines = block.layout();
        const QPointF at = origin;
        if constexpr (kPlain<Edit>) {
            origin.ry() += this->blockBoundingRect(block).height();
        }
        const QTextBlock next = block.next();
        const char16_t c = next.isValid() ? endedBy(next) : u' ';
        if (endsBlock(c) || isBlank(c) || lines->lineCount() == 0) {
            continue;
        }
        const int position = block.position() + block.length() - 1;
        const QTextCharFormat format = next.charFormat();
        const QFont font = format.font().resolve(this->document()->defaultFont());
        const QTextLine line = lines->lineAt(lines->lineCount() - 1);
        const QString shown(QChar{c});
        const QRectF cell(at.x() + line.cursorToX(block.length() - 1), at.y() + line.y(),
                          QFontMetricsF(font).horizontalAdvance(shown), line.height());
        QColor pen = format.hasProperty(QTextFormat::ForegroundBrush)
                         ? format.foreground().color()
                         : this->palette().text().color();
        if (selection.selectionStart() <= position && position < selection.selectionEnd()) {
            painter.fillRect(cell, this->palette().highlight());
            pen = this->palette().highlightedText().color();
        }
        painter.setFont(font);
        painter.setPen(pen);
        painter.drawText(QPointF(cell.left(), cell.top() + line.ascent()), shown);
    }
}

template <class Edit>
void TextBox<Edit>::keyPressEvent(QKeyEvent* event) {
    // Redo answers Ctrl+Y as well as the platform's own keys (Ctrl+Shift+Z).
    if (event->key() == Qt::Key_Y && event->modifiers() == Qt::ControlModifier) {
        this->redo();
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
        Edit::keyPressEvent(event);
        m_newUndoStep = true;  // a move: typing after it is a step of its own
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
    QTextCursor step(this->document());
    const bool ownStep = std::exchange(m_newUndoStep, false);
    if (ownStep) {
        step.beginEditBlock();
    }
    if (code == original) {
        Edit::keyPressEvent(event);
    } else {
        this->insertPlainText(QString(QChar(static_cast<char16_t>(code))));
        event->accept();
    }
    if (ownStep) {
        step.endEditBlock();
    }
    m_newUndoStep = false;  // the characters typed next join this one's step
}

template class TextBox<QTextEdit>;
template class TextBox<QPlainTextEdit>;

std::vector<QTextBlock> PlainTextBox::visibleBlocks() const {
    std::vector<QTextBlock> shown;
    const qreal bottom = viewport()->height();
    QTextBlock block = firstVisibleBlock();
    qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
    for (; block.isValid() && top <= bottom; block = block.next()) {
        if (block.isVisible()) {
            shown.push_back(block);
            top += blockBoundingRect(block).height();
        }
    }
    return shown;
}

void PlainTextBox::contextMenuEvent(QContextMenuEvent* event) {
    // From the keyboard, the menu is for the caret's place.
    const QPoint at =
        event->reason() == QContextMenuEvent::Keyboard ? cursorRect().center() : event->pos();
    QPointer<QMenu> menu = createStandardContextMenu();
    if (extendContextMenu) {
        extendContextMenu(*menu, at);
    }
    menu->exec(event->reason() == QContextMenuEvent::Keyboard ? viewport()->mapToGlobal(at)
                                                              : event->globalPos());
    delete menu;  // unless the box, its parent, went while it was open
    event->accept();
}

}  // namespace lorekeep::ui
