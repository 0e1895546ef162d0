#include "ui/rich_text_box.hpp"

#include <QApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>
#include <QTextDocument>

#include "editor/schema_editor.hpp"
#include "ui/qt_text.hpp"

namespace lorekeep::ui {

namespace {

// A block remembers which character ended the block before it, so that the
// text reads back exactly: CR for a rendered break, LF otherwise.
constexpr int kEndedByCarriageReturn = 13;

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

// Inserts text at the cursor, one paragraph end per separator character;
// which character ended each block is the caller's to record.
void insertWithSeparators(QTextCursor& cursor, TextView text, const QTextCharFormat& format) {
    std::size_t start = 0;
    for (std::size_t k = 0; k <= text.size(); ++k) {
        if (k < text.size() && !markup::isParagraphSeparator(text[k])) {
            continue;
        }
        if (k > start) {
            cursor.insertText(toQString(text.substr(start, k - start)), format);
        }
        if (k < text.size()) {
            const QTextBlockFormat blockFormat = cursor.blockFormat();
            cursor.insertBlock(blockFormat, format);
        }
        start = k + 1;
    }
}

}  // namespace

RichTextBox::RichTextBox(QWidget* parent) : QTextEdit(parent) {
    setAcceptRichText(false);
    setTabChangesFocus(true);
    setLineWrapMode(QTextEdit::WidgetWidth);
}

std::size_t RichTextBox::length() const {
    return static_cast<std::size_t>(document()->characterCount() - 1);
}

std::size_t RichTextBox::selectionLength() const {
    return static_cast<std::size_t>(textCursor().selectionEnd() - textCursor().selectionStart());
}

Text RichTextBox::plainText() const {
    Text text;
    text.reserve(length());
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block != document()->begin()) {
            text.push_back(block.userState() == kEndedByCarriageReturn ? u'\r' : u'\n');
        }
        const QString piece = block.text();
        text.append(reinterpret_cast<const char16_t*>(piece.utf16()),
                    static_cast<std::size_t>(piece.size()));
    }
    return text;
}

void RichTextBox::replaceRange(std::size_t start, std::size_t length, TextView text) {
    if (length == 0 && text.empty()) {
        // Nothing to change, but whoever set the text still hears of it.
        emit textChanged();
        return;
    }
    // One edit block: one undo step and one text-changed notification.
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    // Which block survives a removal across a paragraph end is the toolkit's
    // choice: the blocks from `start` on get back what ended the one before.
    const int ended = document()->findBlock(static_cast<int>(start)).userState();
    cursor.setPosition(static_cast<int>(start));
    cursor.setPosition(static_cast<int>(start + length), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    insertWithSeparators(cursor, text, QTextCharFormat());
    QTextBlock block = document()->findBlock(static_cast<int>(start));
    block.setUserState(ended);
    for (const char16_t c : text) {
        if (markup::isParagraphSeparator(c)) {
            block = block.next();
            block.setUserState(c == u'\r' ? kEndedByCarriageReturn : -1);
        }
    }
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
    // Built in one pass: each paragraph with its alignment, each stretch of
    // one colour inserted once.
    QTextDocument* doc = document();
    const bool undo = doc->isUndoRedoEnabled();
    doc->setUndoRedoEnabled(false);
    QTextCursor cursor(doc);
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.removeSelectedText();

    const TextView text = preview.text;
    std::size_t run = 0;
    std::size_t paragraph = 0;
    QTextBlockFormat blockFormat;
    blockFormat.setAlignment(
        toQt(preview.paragraphs.empty() ? markup::Alignment::Left : preview.paragraphs[0]));
    cursor.setBlockFormat(blockFormat);
    cursor.block().setUserState(-1);
    std::size_t start = 0;
    while (start < text.size()) {
        while (run + 1 < preview.colours.size() && preview.colours[run + 1].start <= start) {
            ++run;
        }
        const std::size_t runEnd =
            run + 1 < preview.colours.size() ? preview.colours[run + 1].start : text.size();
        const QTextCharFormat format = colourFormat(
            run < preview.colours.size() ? preview.colours[run].colour : markup::CharColour{});
        std::size_t end = start;
        while (end < runEnd && !markup::isParagraphSeparator(text[end])) {
            ++end;
        }
        if (end > start) {
            cursor.insertText(toQString(text.substr(start, end - start)), format);
        }
        if (end < runEnd) {  // a paragraph ends here
            ++paragraph;
            blockFormat.setAlignment(toQt(paragraph < preview.paragraphs.size()
                                              ? preview.paragraphs[paragraph]
                                              : markup::Alignment::Left));
            cursor.insertBlock(blockFormat, format);
            cursor.block().setUserState(text[end] == u'\r' ? kEndedByCarriageReturn : -1);
            ++end;
        }
        start = end;
    }
    cursor.endEditBlock();
    doc->setUndoRedoEnabled(undo);

    if (preview.selectionLength > 0) {
        selectToEnd(preview.caret);
    } else {
        setCaretPosition(preview.caret);
    }
}

QColor RichTextBox::characterColour(std::size_t position) const {
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(position));
    cursor.setPosition(static_cast<int>(position + 1), QTextCursor::KeepAnchor);
    const QTextCharFormat format = cursor.charFormat();
    return format.hasProperty(QTextFormat::ForegroundBrush) ? format.foreground().color()
                                                            : QColor();
}

markup::Alignment RichTextBox::paragraphAlignment(int paragraph) const {
    const Qt::Alignment alignment =
        document()->findBlockByNumber(paragraph).blockFormat().alignment() &
        Qt::AlignHorizontal_Mask;
    if (alignment & Qt::AlignRight) {
        return markup::Alignment::Right;
    }
    if (alignment & Qt::AlignHCenter) {
        return markup::Alignment::Centre;
    }
    return markup::Alignment::Left;
}

void RichTextBox::insertFromMimeData(const QMimeData* source) {
    if (source != nullptr && source->hasText() &&
        length() - selectionLength() + static_cast<std::size_t>(source->text().size()) >
            editor::kMaxBodyLength) {
        beep();
        return;
    }
    QTextEdit::insertFromMimeData(source);
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
    if (!isCharacter || !onCharacterTyped || (shortcut && !enter)) {
        QTextEdit::keyPressEvent(event);
        return;
    }
    if (!enter && length() - selectionLength() >= editor::kMaxBodyLength) {
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
    if (code == original) {
        QTextEdit::keyPressEvent(event);
        return;
    }
    insertPlainText(QString(QChar(static_cast<char16_t>(code))));
    event->accept();
}

}  // namespace lorekeep::ui
