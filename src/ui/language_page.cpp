#include "ui/language_page.hpp"

#include "editor/schema_editor.hpp"
#include "ui/caption_button.hpp"
#include "ui/window_layout.hpp"

namespace lorekeep::ui {

namespace {

// "German Red", "French title": what a screen reader calls a language's box.
QString languageName(int language, std::u16string_view what) {
    return QStringLiteral("%1 %2").arg(toQString(infoOf(Language(language)).tabCaption),
                                       toQString(what));
}

// "Center, English": a button is named by its caption and its language, as
// every page has the same buttons.
void nameButton(QPushButton* button, int language) {
    button->setAccessibleName(QStringLiteral("%1, %2").arg(
        button->text(), toQString(infoOf(Language(language)).tabCaption)));
}

}  // namespace

LanguagePage::LanguagePage(int language, const layout::Grid& grid, QPoint offset, QWidget* parent)
    : QWidget(parent) {
    const int i = language;
    auto button = [&](std::u16string_view caption, layout::TwipRect where, const char* name,
                      std::u16string_view tip) {
        return layout::place(new CaptionButton(toQString(caption), this), grid, where,
                             layout::indexedName(name, i), tip, offset);
    };
    leftJustifyButton = button(layout::kCmdLeftJusCaption, layout::kCmdLeftJus, "cmdLeftJus",
                               layout::kCmdLeftJusTip);
    rightJustifyButton = button(layout::kCmdRightJusCaption, layout::kCmdRightJus, "cmdRightJus",
                                layout::kCmdRightJusTip);
    centreButton =
        button(layout::kCmdCentCaption, layout::kCmdCent, "cmdCent", layout::kCmdCentTip);
    colourButton =
        button(layout::kCmdColorCaption, layout::kCmdColor, "cmdColor", layout::kCmdColorTips[i]);

    // Labels first: each colour box overlaps the end of its label and is drawn over it.
    const int first = editor::kColourBoxesPerLanguage * i;
    for (int c = 0; c < editor::kColourBoxesPerLanguage; ++c) {
        colourLabels[c] =
            layout::place(new QLabel(toQString(layout::kLabel5Captions[c]), this), grid,
                          layout::kLabel5[c], layout::indexedName("Label5", first + c), {}, offset);
    }
    for (int c = 0; c < editor::kColourBoxesPerLanguage; ++c) {
        colourBoxes[c] = layout::place(
            new QLineEdit(toQString(layout::kColourBoxInitialText), this), grid,
            layout::kTxtColor[c], layout::indexedName("txtColor", first + c), {}, offset);
        colourBoxes[c]->setEnabled(false);
        colourLabels[c]->setBuddy(colourBoxes[c]);
        colourBoxes[c]->setAccessibleName(languageName(i, layout::kColourBoxNames[c]));
    }
    okButton = button(layout::kCmdOKCaption, layout::kCmdOK, "cmdOK", layout::kCmdOKTip);
    okButton->setEnabled(false);
    copyButton =
        button(layout::kCmdCopyCaption, layout::kCmdCopy, "cmdCopy", layout::kCmdCopyTips[i]);

    for (QPushButton* b : {leftJustifyButton, rightJustifyButton, centreButton, colourButton,
                           okButton, copyButton}) {
        nameButton(b, i);
    }
    setAccessibleName(toQString(infoOf(Language(i)).tabCaption));

    titleLabel = layout::place(new QLabel(toQString(layout::kLabel3Caption), this), grid,
                               layout::kLabel3, layout::indexedName("Label3", i), {}, offset);
    titleBox = layout::place(new QLineEdit(this), grid, layout::kTxtTitle,
                             layout::indexedName("txtTitle", i), layout::kTxtTitleTip, offset);
    titleLabel->setBuddy(titleBox);
    titleBox->setAccessibleName(languageName(i, layout::kTitleName));
    titleBox->setMaxLength(static_cast<int>(kMaxTitleLength));

    bodyEditor = layout::place(new PlainTextBox(this), grid, layout::kLanguageEditor,
                               layout::indexedName("rtbText", i), layout::kEditorTip, offset);
    bodyEditor->setAccessibleName(languageName(i, layout::kEditorName));
}

PreviewPage::PreviewPage(int language, const layout::Grid& grid, QPoint offset, QWidget* parent)
    : QWidget(parent) {
    pane = layout::place(new RichTextBox(this), grid, layout::kPreviewPane,
                         layout::indexedName("rtbText", kLanguageCount + language),
                         layout::kPreviewTips[language], offset);
    pane->setAccessibleName(languageName(language, layout::kPreviewName));
    pane->setCopiesFormatting(true);
    setAccessibleName(toQString(infoOf(Language(language)).previewCaption));
    // The game's page, whatever the desktop's theme: its default text is black.
    QPalette page = pane->palette();
    page.setColor(QPalette::Base, layout::kPreviewPageColour);
    page.setColor(QPalette::Text, layout::kPreviewTextColour);
    pane->setPalette(page);
}

}  // namespace lorekeep::ui
