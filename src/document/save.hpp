#pragma once

#include "document/controls.hpp"
#include "document/date_stamp.hpp"
#include "document/schema_document.hpp"

namespace lorekeep {

// Writes the schema file folder/name.sch from the current titles, bodies and
// font. Every failure is reported here, with one message, and ends here: the
// caller learns nothing. A failed save never harms an existing file.
void Save(TextView SchemaName, TextView filename, const DocumentSource& source, const Clock& clock,
          MessageBox& messages);

// A document filled in code, read as if it were the window's controls.
class DocumentValues final : public DocumentSource {
  public:
    explicit DocumentValues(SchemaDocument document) : document_(std::move(document)) {}
    Text Title(Language language) const override { return document_.entry(language).title; }
    Text Body(Language language) const override { return document_.entry(language).body; }
    Text Font() const override { return document_.font; }

  private:
    SchemaDocument document_;
};

}  // namespace lorekeep
