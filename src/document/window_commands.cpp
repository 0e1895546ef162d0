#include "document/window_commands.hpp"

#include <limits>

#include "document/messages.hpp"
#include "document/save.hpp"
#include "markup/markers.hpp"
#include "markup/mod_schema_parse.hpp"

namespace lorekeep {

void WindowCommands::rtbText_Change(int Index) {
    if (Index < 0 || Index >= kPreviewIndexOffset) {
        return;
    }
    modSchemaParse::ShowPreview(c_.rtbText[Index]->PlainText(), *c_.previewPane[Index]);
}

namespace {

constexpr int kEnterKey = 13;

// A colour box's text as a whole number: optional spaces around, an optional
// sign, then digits only. Nothing for anything else, or for a number beyond
// what any integer holds.
std::optional<long long> WholeNumber(TextView text) {
    while (!text.empty() && text.front() == u' ') {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == u' ') {
        text.remove_suffix(1);
    }
    bool negative = false;
    if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) {
        negative = text.front() == u'-';
        text.remove_prefix(1);
    }
    if (text.empty()) {
        return std::nullopt;
    }
    constexpr long long kLimit = (std::numeric_limits<long long>::max() - 9) / 10;
    long long value = 0;
    for (char16_t c : text) {
        if (c < u'0' || c > u'9' || value > kLimit) {
            return std::nullopt;
        }
        value = value * 10 + (c - u'0');
    }
    return negative ? -value : value;
}

}  // namespace

void WindowCommands::InsertAtCaret(int Index, TextView marker) {
    EditorBox& editor = *c_.rtbText[Index];
    const Text text = editor.PlainText();
    const std::size_t p = std::min(editor.Caret(), text.size());
    Text spliced;
    spliced.reserve(text.size() + marker.size());
    spliced.append(TextView(text).substr(0, p)).append(marker).append(TextView(text).substr(p));
    editor.SetPlainText(spliced);
    editor.Focus();
    editor.SetCaret(p + marker.size());
}

void WindowCommands::Justify(int Index, Flags& own, Flags& firstOther, Flags& secondOther,
                             TextView marker) {
    own[Index] = Toggle(own[Index]);
    if (!own[Index]) {
        return;
    }
    if (firstOther[Index]) {
        firstOther[Index] = false;
    } else if (secondOther[Index]) {
        secondOther[Index] = false;
    }
    InsertAtCaret(Index, marker);
}

void WindowCommands::cmdLeftJus_Click(int Index) {
    Justify(Index, LeftJusOn, RightJusOn, CentOn, markup::kLeftJustify);
}

void WindowCommands::cmdCent_Click(int Index) {
    Justify(Index, CentOn, LeftJusOn, RightJusOn, markup::kCentre);
}

void WindowCommands::cmdRightJus_Click(int Index) {
    Justify(Index, RightJusOn, LeftJusOn, CentOn, markup::kRightJustify);
}

void WindowCommands::cmdColor_Click(int Index) {
    ColorOn[Index] = Toggle(ColorOn[Index]);
    if (ColorOn[Index]) {
        for (int c = 0; c < kColourBoxesPerLanguage; ++c) {
            c_.txtColor[kColourBoxesPerLanguage * Index + c]->SetEnabled(true);
        }
        c_.cmdOK[Index]->SetEnabled(true);
    } else {
        InsertAtCaret(Index, markup::kColourBlack);
    }
}

void WindowCommands::cmdOK_Click(int Index) {
    std::array<TextBox*, kColourBoxesPerLanguage> boxes{};
    std::array<long long, kColourBoxesPerLanguage> values{};
    bool allValid = true;
    for (int c = 0; c < kColourBoxesPerLanguage; ++c) {  // every box, in order, in every case
        boxes[c] = c_.txtColor[kColourBoxesPerLanguage * Index + c];
        const auto value = WholeNumber(boxes[c]->GetText());
        if (!value || *value < 0 || *value > 255) {
            allValid = false;
        } else {
            values[c] = *value;
        }
    }
    if (!allValid) {
        c_.messages->ShowMessage(texts::kColourOutOfRange, texts::kColourOutOfRangeTitle);
        return;
    }
    c_.cmdColor[Index]->SetBackColour({static_cast<std::uint8_t>(values[0]),
                                       static_cast<std::uint8_t>(values[1]),
                                       static_cast<std::uint8_t>(values[2])});
    // The components go in exactly as typed.
    InsertAtCaret(
        Index, markup::ColourMarker(boxes[0]->GetText(), boxes[1]->GetText(), boxes[2]->GetText()));
    for (TextBox* box : boxes) {
        box->SetEnabled(false);
        box->SetText(u"0");
    }
    c_.cmdOK[Index]->SetEnabled(false);
}

void WindowCommands::rtbText_KeyPress(int Index, int& KeyAscii) {
    if (KeyAscii != kEnterKey) {
        return;
    }
    EditorBox& box = *c_.rtbText[Index];
    const Text text = box.PlainText();
    const TextView t = text;
    const std::size_t p = std::min(box.Caret(), text.size());
    auto before = [&](std::u16string_view marker) {
        return p >= marker.size() && t.substr(p - marker.size(), marker.size()) == marker;
    };

    Text updated;
    TextView written;
    if (before(markup::kLineBreak)) {  // a line break becomes a paragraph break
        written = markup::kParagraphBreak;
        updated.append(t.substr(0, p - markup::kLineBreak.size()))
            .append(written)
            .append(t.substr(p));
    } else if (before(markup::kPageBreak)) {  // behind a page break, a new line break
        written = markup::kLineBreak;
        updated.append(t.substr(0, p)).append(written).append(t.substr(p));
    } else if (before(markup::kParagraphBreak)) {  // a paragraph break becomes a page break
        written = markup::kPageBreak;
        updated.append(t.substr(0, p - markup::kParagraphBreak.size()))
            .append(written)
            .append(t.substr(p));
    } else {  // anything else: a line break at the very end of the text
        written = markup::kLineBreak;
        updated.append(t).append(written);
    }
    box.SetPlainText(updated);
    // Counted from the old caret, not from the end of what was written.
    box.SetCaret(p + written.size());
    KeyAscii = 0;
}

void WindowCommands::cmdCopy_Click(int Index) {
    const Text source = c_.rtbText[Index]->PlainText();
    for (int i = 0; i < kLanguageCount; ++i) {
        if (i != Index) {
            c_.rtbText[i]->SetPlainText(source);
        }
    }
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
