#pragma once

#include <cstddef>
#include <functional>
#include <optional>

#include "editor/text_edits.hpp"
#include "markup/incremental_renderer.hpp"
#include "markup/preview.hpp"
#include "markup/text.hpp"
#include "schema/language.hpp"

// The small control interfaces that the window's behaviour is written
// against. The window implements them with real widgets; tests with fakes.
namespace lorekeep::editor {

// A modal message box with a single OK button and no icon.
class MessageBox {
  public:
    virtual ~MessageBox() = default;
    virtual void showMessage(TextView text, TextView title) = 0;
};

// `removed` characters from `start` gave way to `inserted`.
struct TextChange {
    std::size_t start = 0;
    std::size_t removed = 0;
    Text inserted;
};

// A multi-line rich-text box as the commands use it: plain text only.
class EditorBox {
  public:
    virtual ~EditorBox() = default;
    virtual Text plainText() const = 0;
    virtual std::size_t textLength() const { return plainText().size(); }
    // The characters from `start` up to `end`, both within the text.
    virtual Text textBetween(std::size_t start, std::size_t end) const {
        return plainText().substr(start, end - start);
    }
    // Replaces `length` characters from `start` with `text` as one edit (one
    // undo step) and raises the box's text-changed notification, even when
    // nothing changes.
    virtual void replaceRange(std::size_t start, std::size_t length, TextView text) = 0;
    // Tells the user that an edit was refused.
    virtual void beep() = 0;

    // Sets the whole text, caret at the start. Only what differs is replaced,
    // so that an undo step holds no more than the change.
    void replaceText(TextView text) {
        const Splice change = smallestChange(plainText(), text);
        replaceRange(change.start, change.length, change.text);
        setCaretPosition(0);
    }
    // Characters in front of the caret (with a selection, its start).
    virtual std::size_t caretPosition() const = 0;
    // Characters in front of the selection's end; the caret without one.
    virtual std::size_t selectionEnd() const { return caretPosition(); }
    // A position beyond the end puts the caret at the end.
    virtual void setCaretPosition(std::size_t position) = 0;
    // Selects `length` characters from `start`, the caret behind them, and
    // brings them into sight.
    virtual void select(std::size_t start, std::size_t length) { setCaretPosition(start + length); }
    virtual void giveFocus() = 0;
};

// A preview pane: shows a rendered body, its colours and alignments.
class PreviewPane {
  public:
    virtual ~PreviewPane() = default;
    virtual void showPreview(const markup::RenderedPreview& preview) = 0;
    // Changes what the pane shows by `patch`; a pane that cannot (it no
    // longer shows the preview the patch was made against) shows `whole()`.
    virtual void showPreviewChange(const markup::PreviewPatch& patch,
                                   const std::function<markup::RenderedPreview()>& whole) {
        static_cast<void>(patch);
        showPreview(whole());
    }
};

// A single-line text box.
class TextBox {
  public:
    virtual ~TextBox() = default;
    virtual Text text() const = 0;
    virtual void setText(TextView text) = 0;
    virtual void setEnabled(bool enabled) = 0;

    // The selection, as characters in front of its start and its end; both
    // the caret's place without one.
    virtual std::size_t selectionStart() const { return 0; }
    virtual std::size_t selectionEnd() const { return selectionStart(); }
    // Selects `length` characters from `start`, the caret behind them.
    virtual void select(std::size_t start, std::size_t length) {
        static_cast<void>(start);
        static_cast<void>(length);
    }
    void setCaretPosition(std::size_t position) { select(position, 0); }
    std::size_t textLength() const { return text().size(); }
    Text textBetween(std::size_t start, std::size_t end) const {
        return text().substr(start, end - start);
    }
    // Replaces `length` characters from `start` as one undoable edit.
    virtual void replaceRange(std::size_t start, std::size_t length, TextView text) {
        Text whole = this->text();
        setText(whole.replace(start, length, text));
    }
    // Tells the user that an edit was refused.
    virtual void beep() {}
    // Makes the box the one the window's caret is in (without raising the window).
    virtual void giveFocus() {}
};

// Puts `replacement` in place of `old`, which stands at `start` of an editor
// or a text box: the smallest splice, one undo step, the caret behind. A text
// that no longer holds `old` there, or that would grow beyond `limit`, beeps
// and stays.
template <class Box>
bool replaceStretch(Box& box, std::size_t start, TextView old, TextView replacement,
                    std::size_t limit) {
    const std::size_t length = box.textLength();
    if (start > length || old.size() > length - start ||
        length - old.size() + replacement.size() > limit ||
        box.textBetween(start, start + old.size()) != old) {
        box.beep();
        return false;
    }
    const Splice change = smallestChange(old, replacement);
    box.replaceRange(start + change.start, change.length, change.text);
    box.setCaretPosition(start + replacement.size());
    return true;
}

// The tab strip and the window's caret, as finding uses them.
class Pages {
  public:
    virtual ~Pages() = default;
    // The language of the page shown; a preview page's is its language's.
    virtual Language shownLanguage() const = 0;
    // The window's caret stands in the shown language's title box.
    virtual bool titleHasCaret() const = 0;
    virtual void showLanguage(Language language) = 0;
};

class Button {
  public:
    virtual ~Button() = default;
    virtual void setEnabled(bool enabled) = 0;
    virtual void setBackgroundColour(markup::Rgb colour) = 0;
};

// The font box: an editable drop-down list of the game's fonts.
class FontBox {
  public:
    virtual ~FontBox() = default;
    virtual Text currentText() const = 0;
    // Selects a list entry; its text becomes the box's text.
    virtual void setCurrentEntry(int position) = 0;
    // Shows a text that is no list entry; nothing is selected.
    virtual void setEditText(TextView text) = 0;
};

// The window's one file dialog, in its save form: the user picks an existing
// file or types a new name. A chosen path that is empty means cancelled.
class FileDialog {
  public:
    virtual ~FileDialog() = default;
    // The open form picks an existing file; the save form also takes a new name.
    virtual void setOpenForm(bool open) = 0;
    virtual void setDefaultSuffix(TextView suffix) = 0;
    virtual void setTitle(TextView title) = 0;
    virtual void setFilter(TextView description, TextView pattern) = 0;
    // Modal; returns when the user has chosen or cancelled.
    virtual void exec() = 0;
    // The chosen file's full path, and its name without the directory.
    virtual Text chosenPath() const = 0;
    virtual Text chosenFileName() const = 0;
    virtual void clearChosenPath() = 0;
};

}  // namespace lorekeep::editor
