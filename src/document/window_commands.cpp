#include "document/window_commands.hpp"

#include "document/messages.hpp"
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

void WindowCommands::Load(TextView SchemaName, TextView filename) {
    LoadTargets targets;
    for (int i = 0; i < kLanguageCount; ++i) {
        targets.editors[i] = c_.rtbText[i];
        targets.titles[i] = c_.txtTitle[i];
    }
    targets.font = c_.cboFont;
    targets.messages = c_.messages;
    lorekeep::Load(SchemaName, filename, targets, readerOptions);
}

void WindowCommands::cmdLoc_Click() {
    c_.cd1->SetDefaultExtension(texts::kSchemaDefaultExtension);
    c_.cd1->SetTitle(texts::kLocationDialogTitle);
    c_.cd1->SetFilter(texts::kSchemaFilterDescription, texts::kSchemaFilterPattern);
    c_.cd1->ShowSave();
    const Text path = c_.cd1->FileName();
    if (path.empty()) {
        return;  // cancelled
    }
    const Text name = c_.cd1->FileTitle();
    // The folder keeps its trailing separator.
    c_.txtLoc->SetText(TextView(path).substr(0, path.size() - std::min(name.size(), path.size())));
    // The last four characters go, whatever they are; a shorter name has no
    // sound reading, so the name box keeps what it had.
    constexpr std::size_t kExtensionLength = 4;
    if (name.size() >= kExtensionLength) {
        c_.txtName->SetText(TextView(name).substr(0, name.size() - kExtensionLength));
    }
    c_.cd1->ClearFileName();
}

namespace {

// Both boxes must hold something; spaces count as something.
bool FolderAndNameGiven(const TextBox& folder, const TextBox& name, MessageBox& messages) {
    if (folder.GetText().empty() || name.GetText().empty()) {
        messages.ShowMessage(texts::kFolderOrNameMissing, texts::kProgramTitle);
        return false;
    }
    return true;
}

}  // namespace

void WindowCommands::cmdSave_Click() {
    if (FolderAndNameGiven(*c_.txtLoc, *c_.txtName, *c_.messages)) {
        Save(c_.txtName->GetText(), c_.txtLoc->GetText());
    }
}

void WindowCommands::cmdLoad_Click() {
    if (FolderAndNameGiven(*c_.txtLoc, *c_.txtName, *c_.messages)) {
        Load(c_.txtName->GetText(), c_.txtLoc->GetText());
    }
}

}  // namespace lorekeep
