#include "ui/rich_text_box.hpp"

#include <QApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>
#include <QTextDocument>

#include "document/window_commands.hpp"
#include "ui/qt_text.hpp"

namespace lorekeep::ui {

namespace {

// A block remembers which character ended the block before it, so that the
// text reads back exactly: CR for a rendered break, LF otherwise.
constexpr int kEndedByCarriageReturn = 13;

Qt::Alignment ToQt(markup::Alignment alignment) {
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

QTextCharFormat ColourFormat(const markup::CharColour& colour) {
    QTextCharFormat format;
    if (colour) {
        format.setForeground(QColor(colour->red, colour->green, colour->blue));
    }
    return format;
}

}  // namespace

RichTextBox::RichTextBox(QWidget* parent) : QTextEdit(parent) {
    setAcceptRichText(false);
    setTabChangesFocus(true);
    setLineWrapMode(QTextEdit::WidgetWidth);
}

std::size_t RichTextBox::Length() const {
    return static_cast<std::size_t>(document()->characterCount() - 1);
}

Text RichTextBox::PlainText() const {
    Text text;
    text.reserve(Length());
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

void RichTextBox::InsertWithSeparators(QTextCursor& cursor, TextView text,
                                       const QTextCharFormat& format) {
    std::size_t start = 0;
    for (std::size_t k = 0; k <= text.size(); ++k) {
        if (k < text.size() && !markup::IsParagraphSeparator(text[k])) {
            continue;
        }
        if (k > start) {
            cursor.insertText(ToQString(text.substr(start, k - start)), format);
        }
        if (k < text.size()) {
            const QTextBlockFormat blockFormat = cursor.blockFormat();
            cursor.insertBlock(blockFormat, format);
            cursor.block().setUserState(text[k] == u'\r' ? kEndedByCarriageReturn : -1);
        }
        start = k + 1;
    }
}

void RichTextBox::SetPlainText(TextView text) {
    // One edit block: one undo step and one text-changed notification.
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.removeSelectedText();
    InsertWithSeparators(cursor, text, QTextCharFormat());
    cursor.endEditBlock();
    SetCaret(0);
}

std::size_t RichTextBox::Caret() const {
    return static_cast<std::size_t>(textCursor().selectionStart());
}

void RichTextBox::SetCaret(std::size_t position) {
    QTextCursor cursor = textCursor();
    cursor.setPosition(static_cast<int>(std::min(position, Length())));
    setTextCursor(cursor);
}

void RichTextBox::Focus() {
    setFocus(Qt::OtherFocusReason);
}

void RichTextBox::SetText(TextView text) {
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.removeSelectedText();
    cursor.setBlockFormat(QTextBlockFormat());
    cursor.setCharFormat(QTextCharFormat());
    InsertWithSeparators(cursor, text, QTextCharFormat());
    cursor.endEditBlock();
    SetCaret(0);
}

void RichTextBox::ReplaceText(std::size_t offset, std::size_t count, TextView with) {
    const std::size_t length = Length();
    offset = std::min(offset, length);
    count = std::min(count, length - offset);
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    cursor.setPosition(static_cast<int>(offset));
    cursor.setPosition(static_cast<int>(offset + count), QTextCursor::KeepAnchor);
    const QTextCharFormat format = cursor.charFormat();
    cursor.removeSelectedText();
    InsertWithSeparators(cursor, with, format);
    cursor.endEditBlock();
}

void RichTextBox::SelectToEnd(std::size_t offset) {
    // The anchor at the end and the caret at the start: the caret position is
    // the selection's start, as the commands count it.
    const std::size_t length = Length();
    QTextCursor cursor = textCursor();
    cursor.setPosition(static_cast<int>(length));
    cursor.setPosition(static_cast<int>(std::min(offset, length)), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

void RichTextBox::ColourSelection(markup::Rgb colour) {
    QTextCursor cursor = textCursor();
    if (!cursor.hasSelection()) {
        return;
    }
    cursor.mergeCharFormat(ColourFormat(colour));
}

void RichTextBox::AlignSelection(markup::Alignment alignment) {
    QTextBlockFormat format;
    format.setAlignment(ToQt(alignment));
    textCursor().mergeBlockFormat(format);
}

void RichTextBox::ShowRendered(const markup::RenderedPreview& preview) {
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
        ToQt(preview.paragraphs.empty() ? markup::Alignment::Left : preview.paragraphs[0]));
    cursor.setBlockFormat(blockFormat);
    cursor.block().setUserState(-1);
    std::size_t start = 0;
    while (start < text.size()) {
        while (run + 1 < preview.colours.size() && preview.colours[run + 1].start <= start) {
            ++run;
        }
        const std::size_t runEnd =
            run + 1 < preview.colours.size() ? preview.colours[run + 1].start : text.size();
        const QTextCharFormat format = ColourFormat(
            run < preview.colours.size() ? preview.colours[run].colour : markup::CharColour{});
        std::size_t end = start;
        while (end < runEnd && !markup::IsParagraphSeparator(text[end])) {
            ++end;
        }
        if (end > start) {
            cursor.insertText(ToQString(text.substr(start, end - start)), format);
        }
        if (end < runEnd) {  // a paragraph ends here
            ++paragraph;
            blockFormat.setAlignment(ToQt(paragraph < preview.paragraphs.size()
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
        SelectToEnd(preview.caret);
    } else {
        SetCaret(preview.caret);
    }
}

QColor RichTextBox::CharacterColour(std::size_t position) const {
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(position));
    cursor.setPosition(static_cast<int>(position + 1), QTextCursor::KeepAnchor);
    const QTextCharFormat format = cursor.charFormat();
    return format.hasProperty(QTextFormat::ForegroundBrush) ? format.foreground().color()
                                                            : QColor();
}

markup::Alignment RichTextBox::ParagraphAlignment(int paragraph) const {
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
        Length() + static_cast<std::size_t>(source->text().size()) > kMaxBodyLength) {
        QApplication::beep();
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
