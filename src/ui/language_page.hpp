#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <array>

#include "editor/schema_editor.hpp"
#include "ui/rich_text_box.hpp"
#include "ui/text_box.hpp"
#include "ui/window_layout.hpp"

namespace lorekeep::ui {

// One language's editing page: the marker buttons, the colour boxes, the copy
// button, the title and the body editor, each named as its control array
// element (cmdCent(2), txtColor(7), ...).
class LanguagePage : public QWidget {
    Q_OBJECT

  public:
    // `offset`: where the page's corner lies in the tab container.
    LanguagePage(int language, const layout::Grid& grid, QPoint offset, QWidget* parent = nullptr);

    QPushButton* leftJustifyButton;
    QPushButton* rightJustifyButton;
    QPushButton* centreButton;
    QPushButton* colourButton;
    std::array<QLabel*, editor::kColourBoxesPerLanguage> colourLabels{};
    std::array<QLineEdit*, editor::kColourBoxesPerLanguage> colourBoxes{};  // red, green, blue
    QPushButton* okButton;
    QPushButton* copyButton;
    QLabel* titleLabel;
    QLineEdit* titleBox;
    PlainTextBox* bodyEditor;
};

// One language's preview page: the pane rtbText(4 + language).
class PreviewPage : public QWidget {
    Q_OBJECT

  public:
    PreviewPage(int language, const layout::Grid& grid, QPoint offset, QWidget* parent = nullptr);

    RichTextBox* pane;
};

}  // namespace lorekeep::ui
