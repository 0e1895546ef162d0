#include "document/window_commands.hpp"

#include "document/save.hpp"
#include "markup/mod_schema_parse.hpp"

namespace lorekeep {

void WindowCommands::rtbText_Change(int Index) {
    if (Index < 0 || Index >= kPreviewIndexOffset) {
        return;
    }
    modSchemaParse::ShowPreview(c_.rtbText[Index]->PlainText(), *c_.previewPane[Index]);
}

Text WindowCommands::Title(Language language) const {
    return c_.txtTitle[IndexOf(language)]->GetText();
}

Text WindowCommands::Body(Language language) const {
    return c_.rtbText[IndexOf(language)]->PlainText();
}

Text WindowCommands::Font() const {
    return c_.cboFont->CurrentText();
}

void WindowCommands::Save(TextView SchemaName, TextView filename) {
    lorekeep::Save(SchemaName, filename, *this, *c_.clock, *c_.messages);
}

}  // namespace lorekeep
