#pragma once

#include "document/language.hpp"
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
