#pragma once

#include <cstddef>

#include "document/language.hpp"
#include "markup/preview.hpp"
#include "markup/text.hpp"

// The small control interfaces that the command logic is written against. The
// window implements them with real widgets; tests implement them with fakes.
namespace lorekeep {

// A modal message box with a single OK button and no icon.
class MessageBox {
  public:
    virtual ~MessageBox() = default;
    virtual void ShowMessage(TextView text, TextView title) = 0;
};

// A multi-line rich-text box as the editing commands use it: plain text only.
class EditorBox {
  public:
    virtual ~EditorBox() = default;
    virtual Text PlainText() const = 0;
    // Replaces the whole text; raises the box's text-changed notification.
    virtual void SetPlainText(TextView text) = 0;
    // Characters in front of the caret (with a selection, its start).
    virtual std::size_t Caret() const = 0;
    // A position beyond the end puts the caret at the end.
    virtual void SetCaret(std::size_t position) = 0;
    virtual void Focus() = 0;
};

// A single-line text box.
class TextBox {
  public:
    virtual ~TextBox() = default;
    virtual Text GetText() const = 0;
    virtual void SetText(TextView text) = 0;
    virtual void SetEnabled(bool enabled) = 0;
    virtual bool IsEnabled() const = 0;
};

class Button {
  public:
    virtual ~Button() = default;
    virtual void SetEnabled(bool enabled) = 0;
    virtual bool IsEnabled() const = 0;
    virtual void SetBackColour(markup::Rgb colour) = 0;
};

// The font box: an editable drop-down list.
class FontBox {
  public:
    virtual ~FontBox() = default;
    virtual int EntryCount() const = 0;
    virtual Text EntryText(int position) const = 0;
    // The entry's text becomes the box's text.
    virtual void SelectEntry(int position) = 0;
    virtual Text CurrentText() const = 0;
    virtual void SetCurrentText(TextView text) = 0;
};

// The window's one file dialog, in its save form: the user picks an existing
// file or types a new name. A chosen path that is empty means cancelled.
class FileDialog {
  public:
    virtual ~FileDialog() = default;
    virtual void SetDefaultExtension(TextView extension) = 0;
    virtual void SetTitle(TextView title) = 0;
    virtual void SetFilter(TextView description, TextView pattern) = 0;
    // Modal; returns when the user has chosen or cancelled.
    virtual void ShowSave() = 0;
    // The chosen file's full path, and its name without the directory.
    virtual Text FileName() const = 0;
    virtual Text FileTitle() const = 0;
    virtual void ClearFileName() = 0;
};

// Where Save reads the document's fields at the moment of saving: the title
// and body boxes of each language and the font box.
class DocumentSource {
  public:
    virtual ~DocumentSource() = default;
    virtual Text Title(Language language) const = 0;
    virtual Text Body(Language language) const = 0;
    virtual Text Font() const = 0;
};

}  // namespace lorekeep
